#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

namespace thalvorn {

/// The texts of one enumeration case: what is stored and sent, and what a person reads.
struct EnumText {
  std::string_view raw;
  std::string_view display;
  constexpr EnumText(std::string_view both) : raw(both), display(both) {}
  constexpr EnumText(std::string_view r, std::string_view d) : raw(r), display(d) {}
};

/// Specialised beside each enumeration with `static constexpr std::array table`, one `EnumText` per case in case order.
template <class E>
struct EnumTexts;

template <class E>
inline constexpr std::size_t caseCount = EnumTexts<E>::table.size();

namespace enum_detail {
template <class E>
inline constexpr auto cases = [] {
  std::array<E, caseCount<E>> all{};
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<E>(i);
  return all;
}();
}  // namespace enum_detail

/// All cases in declared order.
template <class E>
constexpr const std::array<E, caseCount<E>>& allCases() {
  return enum_detail::cases<E>;
}

/// The index of a text in a process-wide table of texts seen; safe from any thread.
std::uint32_t internText(std::string_view text);
/// The text of an index that `internText` gave; valid for the life of the process.
std::string_view internedText(std::uint32_t index);

/// A stored enumeration value: a known case, or the raw text of a case that only a newer program knows. Such a text is
/// kept, shown as it is and written back unchanged.
template <class E>
class Choice {
 public:
  constexpr Choice(E value = E{}) : code_(static_cast<std::uint32_t>(value)) {}

  static Choice fromRaw(std::string_view raw) {
    const auto& table = EnumTexts<E>::table;
    for (std::size_t i = 0; i < table.size(); ++i)
      if (table[i].raw == raw) return static_cast<E>(i);
    Choice unknown;
    unknown.code_ = static_cast<std::uint32_t>(table.size()) + internText(raw);
    return unknown;
  }

  constexpr bool isKnown() const { return code_ < caseCount<E>; }
  constexpr std::optional<E> known() const {
    return isKnown() ? std::optional<E>(static_cast<E>(code_)) : std::nullopt;
  }
  /// The known case, or `otherwise` for a text of a newer program.
  constexpr E knownOr(E otherwise) const { return isKnown() ? static_cast<E>(code_) : otherwise; }

  std::string_view raw() const {
    return isKnown() ? EnumTexts<E>::table[code_].raw : internedText(code_ - caseCount<E>);
  }
  std::string_view display() const {
    return isKnown() ? EnumTexts<E>::table[code_].display : internedText(code_ - caseCount<E>);
  }
  /// The position in the declared order; texts of a newer program follow the known cases.
  constexpr std::uint32_t order() const { return code_; }

  friend constexpr bool operator==(Choice, Choice) = default;
  /// As `order()`.
  friend constexpr std::strong_ordering operator<=>(Choice, Choice) = default;
  friend constexpr bool operator==(Choice choice, E value) { return choice.code_ == static_cast<std::uint32_t>(value); }

 private:
  std::uint32_t code_;
};

/// The known case with this raw text; empty when there is none.
template <class E>
constexpr std::optional<E> caseFromRaw(std::string_view raw) {
  const auto& table = EnumTexts<E>::table;
  for (std::size_t i = 0; i < table.size(); ++i)
    if (table[i].raw == raw) return static_cast<E>(i);
  return std::nullopt;
}

template <class E>
constexpr std::string_view displayText(E value) {
  return EnumTexts<E>::table[static_cast<std::size_t>(value)].display;
}

template <class E>
constexpr std::string_view rawText(E value) {
  return EnumTexts<E>::table[static_cast<std::size_t>(value)].raw;
}

template <class T>
inline constexpr bool isChoice = false;
template <class E>
inline constexpr bool isChoice<Choice<E>> = true;

}  // namespace thalvorn
