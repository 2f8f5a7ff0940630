#include "sync/settings_step.h"

#include <algorithm>

#include "backend/row_kind.h"
#include "store/preferences.h"
#include "store/user_preferences.h"
#include "sync/row_upload.h"

namespace thalvorn {
namespace {

constexpr std::string_view kTable = "user_settings";
constexpr std::string_view kAgreed = "_settingsAgreed";  ///< what stood here when both sides last agreed
constexpr std::string_view kTheirs = "_settingsTheirs";  ///< and on the server, where a value may mean nothing here
constexpr int kAttempts = 3;                             ///< while others write in between

/// The settings of a user, each with the preference that tells when he last changed it.
template <class Visit>
void forEachSetting(Visit visit) {
  visit(&SBUserSettingsRow::selectedVesselId, preference_keys::selectedVesselID);
  visit(&SBUserSettingsRow::weatherLocation, preference_keys::weatherLocation);
  visit(&SBUserSettingsRow::tideStationId, preference_keys::tideStationID);
  visit(&SBUserSettingsRow::tideStationName, preference_keys::tideStationName);
  visit(&SBUserSettingsRow::onboardingComplete, preference_keys::onboardingComplete);
  visit(&SBUserSettingsRow::displayName, preference_keys::userDisplayName);
}

UserPreferences own(const AppViewModel& model) { return {model.cache(), model.prefix()}; }

std::string onboardingKey(const AppViewModel& model) {
  return std::string(preference_keys::onboardingComplete) + model.prefix();
}

std::optional<std::string> present(std::optional<std::string> text) {
  return text && text->empty() ? std::nullopt : std::move(text);
}

SBUserSettingsRow settingsHere(const AppViewModel& model) {
  const UserPreferences preferences = own(model);
  SBUserSettingsRow row;
  row.userId = Uuid::parse(model.prefix()).value_or(Uuid{});
  row.selectedVesselId = model.selectedVesselID();
  row.weatherLocation = present(preferences.value(preference_keys::weatherLocation));
  row.tideStationId = present(preferences.value(preference_keys::tideStationID));
  row.tideStationName = present(preferences.value(preference_keys::tideStationName));
  row.onboardingComplete = Preferences(model.cache()).flag(onboardingKey(model));
  row.displayName = present(model.displayName());
  return row;
}

/// The beginning of time when the user has not chosen anything.
Timestamp lastChange(const AppViewModel& model) {
  Timestamp last{};
  forEachSetting([&](auto, std::string_view name) { last = std::max(last, own(model).changedAt(name)); });
  return last;
}

/// The values alone, as they are compared.
SBUserSettingsRow valuesOf(const SBUserSettingsRow& row) {
  SBUserSettingsRow values;
  values.userId = row.userId;
  forEachSetting([&](auto field, std::string_view) { values.*field = row.*field; });
  return values;
}

std::string key(const AppViewModel& model, std::string_view name) { return model.prefix() + std::string(name); }

std::optional<SBUserSettingsRow> kept(const AppViewModel& model, std::string_view name) {
  const auto stored = model.cache().preference(key(model, name));
  const auto row = stored ? recordFromJson<SBUserSettingsRow>(*stored)
                          : std::expected<SBUserSettingsRow, JsonError>(std::unexpected(JsonError{}));
  return row ? std::optional(*row) : std::nullopt;
}

void agree(const AppViewModel& model, const SBUserSettingsRow& here, const SBUserSettingsRow& theirs) {
  model.cache().setPreference(key(model, kAgreed), toJson(valuesOf(here)));
  model.cache().setPreference(key(model, kTheirs), toJson(valuesOf(theirs)));
}

/// The settings of both sides, field by field: what one side changed since they last agreed stands, and what both
/// changed goes to the later. Without an agreement this is a new computer, which adds what is missing there and resets
/// nothing.
struct SettingsMerge {
  SBUserSettingsRow merged;
  bool takesTheirs = false;              ///< something of theirs is new here
  std::optional<Timestamp> changedHere;  ///< the latest change here that stands
};

SettingsMerge merge(const SyncRun& run, const SBUserSettingsRow& here, const SBUserSettingsRow& stored) {
  const auto agreed = kept(run.model, kAgreed);
  const SBUserSettingsRow theirsBefore = kept(run.model, kTheirs).value_or(agreed.value_or(SBUserSettingsRow{}));
  const UserPreferences preferences = own(run.model);
  SettingsMerge result{.merged = stored};
  forEachSetting([&](auto field, std::string_view name) {
    const auto& mine = here.*field;
    const auto& theirs = stored.*field;
    if (mine == theirs) return;
    const Timestamp at = std::min(preferences.changedAt(name), run.client.serverNow());
    const bool changedHere = agreed ? mine != (*agreed).*field : theirs == std::remove_cvref_t<decltype(theirs)>{};
    const bool changedThere = theirs != theirsBefore.*field;
    if (changedHere && (!agreed || !changedThere || at > stored.updatedAt)) {
      result.merged.*field = mine;
      result.changedHere = std::max(at, result.changedHere.value_or(at));
    } else if (!agreed || changedThere) {
      result.takesTheirs = true;
    }
  });
  return result;
}

/// Puts the values in place here. One that means nothing here, such as a vessel that has not arrived yet, is left out.
void apply(AppViewModel& model, const SBUserSettingsRow& row) {
  const UserPreferences preferences = own(model);
  preferences.set(preference_keys::weatherLocation, row.weatherLocation);
  preferences.set(preference_keys::tideStationID, row.tideStationId);
  preferences.set(preference_keys::tideStationName, row.tideStationName);
  Preferences(model.cache()).setFlag(onboardingKey(model), row.onboardingComplete);
  if (row.displayName) model.setDisplayName(*row.displayName);
  if (row.selectedVesselId && model.vessels().find(*row.selectedVesselId))
    model.setSelectedVesselID(row.selectedVesselId);
}

void takeTheirs(SyncRun& run, const SettingsMerge& both, Timestamp at) {
  apply(run.model, both.merged);
  run.log.say("⚙️ user settings: applied newer remote (" + formatTimestamp(at) + ")");
}

SBTask<std::optional<SBUserSettingsRow>> readSettings(SyncRunPtr run) {
  const auto reply = co_await run->client.read(TableQuery(kTable).eq("user_id", run->userID));
  if (!reply) co_return std::unexpected(reply.error());
  const auto rows = listFromJson<SBUserSettingsRow>(
      std::string_view(reply->rows.data(), static_cast<std::size_t>(reply->rows.size())), JsonFields::full);
  if (!rows) co_return std::unexpected(SBError::server(200, QStringLiteral("Invalid JSON response")));
  if (rows->records.empty()) co_return std::nullopt;
  co_return rows->records.front();
}

SBTask<void> sendOnce(SyncRunPtr run, SBUserSettingsRow row) {
  const std::string list =
      rowsToJson(std::vector{std::move(row)}, run->schema.ownColumns ? RowColumns::all : RowColumns::standard);
  const std::string body = list.substr(1, list.size() - 2);  // the row alone
  auto sent = co_await run->client.upsertOne(TableQuery(kTable).onConflict("user_id"), QByteArray::fromStdString(body));
  logUpsert(run->log, kTable, 1, sent);
  co_return sent;
}

SBTask<void> sendSettings(SyncRunPtr run, RunToken token, SBUserSettingsRow row) {
  auto sent = co_await sendOnce(run, row);
  if (sent || token.isOver() || sent.error().remedy != SBError::Remedy::updateSchema || !run->schema.ownColumns)
    co_return sent;
  run->schema.ownColumns = false;
  co_return co_await sendOnce(run, row);
}

}  // namespace

int settingsWaiting(const AppViewModel& model) {
  if (model.staysOnThisComputer() || model.prefix().empty()) return 0;
  return kept(model, kAgreed) == valuesOf(settingsHere(model)) ? 0 : 1;
}

SBTask<void> uploadSettings(SyncRunPtr run, RunToken token) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const auto read = co_await readSettings(run);
    if (!read) co_return std::unexpected(read.error());
    if (token.isOver()) co_return {};
    const std::optional<SBUserSettingsRow> stored = *read;
    SBUserSettingsRow row = settingsHere(run->model);
    if (stored) {
      const SettingsMerge both = merge(*run, row, *stored);
      if (both.takesTheirs) takeTheirs(*run, both, stored->updatedAt);
      if (!both.changedHere) {
        agree(run->model, settingsHere(run->model), *stored);
        co_return {};
      }
      row = both.merged;
      // Later than what it replaces, so that every computer takes it.
      row.updatedAt = std::max(*both.changedHere, stored->updatedAt + std::chrono::seconds(1));
      row.seenVersion = stored->serverVersion;
    } else {
      // Where nothing was chosen yet, whatever is chosen elsewhere is later.
      row.updatedAt = std::min(lastChange(run->model), run->client.serverNow());
    }
    row.appVersion = THALVORN_VERSION;
    const SBUserSettingsRow here = settingsHere(run->model);
    const auto sent = co_await sendSettings(run, token, row);
    if (!sent) co_return std::unexpected(sent.error());
    if (token.isOver()) co_return {};
    // The server passes over a row that another computer was ahead of.
    const auto back = co_await readSettings(run);
    if (!back) co_return std::unexpected(back.error());
    if (token.isOver()) co_return {};
    if (*back && valuesOf(**back) == valuesOf(row)) {
      agree(run->model, here, row);
      co_return {};
    }
  }
  co_return {};
}

SBTask<bool> downloadSettings(SyncRunPtr run, RunToken token) {
  const auto read = co_await readSettings(run);
  if (!read) co_return std::unexpected(read.error());
  if (token.isOver()) co_return false;
  const std::optional<SBUserSettingsRow> stored = *read;
  const SettingsMerge both = stored ? merge(*run, settingsHere(run->model), *stored) : SettingsMerge{};
  if (both.takesTheirs) {
    takeTheirs(*run, both, stored->updatedAt);
  } else {
    run->log.say("⚙️ user settings: local in sync");
  }
  // What was changed here meanwhile still waits.
  if (stored && !both.changedHere) agree(run->model, settingsHere(run->model), *stored);
  co_return true;
}

}  // namespace thalvorn
