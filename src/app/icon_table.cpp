#include "app/icon_table.h"

#include <algorithm>
#include <array>

namespace thalvorn::app {

namespace {

constexpr std::array kAliases = std::to_array<IconAlias>({
    {"anchor", "anchor"},
    {"antenna.radiowaves.left.and.right", "broadcast"},
    {"arrow.down.to.line", "anchor-simple"},
    {"arrow.up.and.down.and.arrow.left.and.right", "arrows-out-cardinal"},
    {"arrow.up.and.down.circle.fill", "arrows-vertical"},
    {"bandage.fill", "bandaids"},
    {"bell.fill", "bell"},
    {"bolt.circle.fill", "lightning"},
    {"bolt.fill", "lightning"},
    {"book.fill", "book-open"},
    {"calendar", "calendar-dots"},
    {"checkmark.circle.fill", "check-circle"},
    {"checkmark.shield.fill", "shield-check"},
    {"cross.circle.fill", "first-aid-kit"},
    {"cross.fill", "first-aid-kit"},
    {"doc.fill", "file"},
    {"doc.text.fill", "file-text"},
    {"doc.text.magnifyingglass", "file-magnifying-glass"},
    {"dot.radiowaves.left.and.right", "broadcast"},
    {"drop.fill", "drop"},
    {"engine.combustion.fill", "engine"},
    {"exclamationmark.triangle.fill", "warning"},
    {"fanblades.fill", "fan"},
    {"ferry.fill", "boat"},
    {"flame.circle.fill", "fire-extinguisher"},
    {"flame.fill", "flame"},
    {"fuelpump.fill", "gas-pump"},
    {"gearshape.fill", "gear"},
    {"hammer.fill", "hammer"},
    {"leaf.fill", "leaf"},
    {"lifepreserver.fill", "lifebuoy"},
    {"location.north.fill", "navigation-arrow"},
    {"lock.shield.fill", "lock-key"},
    {"paintbrush.fill", "paint-brush"},
    {"person.2.fill", "users"},
    {"person.3.fill", "users-three"},
    {"person.fill", "user"},
    {"person.fill.questionmark", "person-simple-swim"},
    {"phone.fill", "phone"},
    {"pin.fill", "push-pin"},
    {"sailboat.fill", "sailboat"},
    {"scissors", "scissors"},
    {"shield.fill", "shield"},
    {"shield.lefthalf.filled", "shield-checkered"},
    {"snowflake", "snowflake"},
    {"sparkles", "sparkle"},
    {"star.fill", "star"},
    {"thermometer.medium", "thermometer"},
    {"tv.and.hifispeaker.fill", "speaker-hifi"},
    {"washer.fill", "washing-machine"},
    {"wind", "wind"},
    {"wrench.and.screwdriver.fill", "wrench"},
});
static_assert(std::ranges::is_sorted(kAliases, {}, &IconAlias::name));

}  // namespace

std::span<const IconAlias> iconAliases() { return kAliases; }

std::string_view iconDrawing(std::string_view name) {
  const auto found = std::ranges::lower_bound(kAliases, name, {}, &IconAlias::name);
  return found != kAliases.end() && found->name == name ? found->drawing : name;
}

}  // namespace thalvorn::app
