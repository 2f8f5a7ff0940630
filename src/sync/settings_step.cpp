#include "sync/settings_step.h"

#include "backend/row_kind.h"
#include "store/preferences.h"

namespace thalvorn {
namespace {

constexpr std::string_view kTable = "user_settings";
constexpr std::string_view kAgreed = "_settingsAgreed";       ///< the values that both sides last had
constexpr std::string_view kAgreedAt = "_settingsUpdatedAt";  ///< and since when

std::optional<std::string> present(std::string text) {
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

SBUserSettingsRow settingsHere(const AppViewModel& model) {
  const Preferences preferences(model.cache());
  SBUserSettingsRow row;
  row.userId = Uuid::parse(model.prefix()).value_or(Uuid{});
  row.selectedVesselId = model.selectedVesselID();
  row.weatherLocation = present(preferences.text(preference_keys::weatherLocation));
  row.tideStationId = present(preferences.text(preference_keys::tideStationID));
  row.tideStationName = present(preferences.text(preference_keys::tideStationName));
  row.onboardingComplete = preferences.flag(std::string(preference_keys::onboardingComplete) + model.prefix());
  row.displayName = present(model.displayName());
  return row;
}

/// The values alone, as they are compared.
std::string valuesOf(SBUserSettingsRow row) {
  row.extraJson.reset();
  row.serverVersion.reset();
  row.seenVersion.reset();
  row.appVersion.reset();
  row.updatedAt = {};
  return toJson(row);
}

std::string key(const AppViewModel& model, std::string_view name) { return model.prefix() + std::string(name); }

void agree(const AppViewModel& model, const SBUserSettingsRow& row) {
  model.cache().setPreference(key(model, kAgreed), valuesOf(row));
  model.cache().setPreference(key(model, kAgreedAt), formatTimestamp(row.updatedAt));
}

Timestamp agreedAt(const AppViewModel& model) {
  return parseTimestamp(model.cache().preference(key(model, kAgreedAt)).value_or("")).value_or(Timestamp{});
}

void apply(AppViewModel& model, const SBUserSettingsRow& row) {
  Preferences preferences(model.cache());
  const auto put = [&](std::string_view name, const std::optional<std::string>& value) {
    model.cache().setPreference(std::string(name), value);
  };
  put(preference_keys::weatherLocation, row.weatherLocation);
  put(preference_keys::tideStationID, row.tideStationId);
  put(preference_keys::tideStationName, row.tideStationName);
  preferences.setFlag(std::string(preference_keys::onboardingComplete) + model.prefix(), row.onboardingComplete);
  if (row.displayName) model.setDisplayName(*row.displayName);
  if (row.selectedVesselId && model.vessels().find(*row.selectedVesselId))
    model.setSelectedVesselID(row.selectedVesselId);
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

SBTask<void> sendSettings(SyncRunPtr run, SBUserSettingsRow row) {
  const std::string body =
      rowsToJson(std::vector{std::move(row)}, run->schema.ownColumns ? RowColumns::all : RowColumns::standard);
  co_return co_await run->client.upsert(TableQuery(kTable), QByteArray::fromStdString(body));
}

}  // namespace

int settingsWaiting(const AppViewModel& model) {
  if (model.staysOnThisComputer() || model.prefix().empty()) return 0;
  const auto agreed = model.cache().preference(key(model, kAgreed));
  return agreed == valuesOf(settingsHere(model)) ? 0 : 1;
}

SBTask<void> uploadSettings(SyncRunPtr run, RunToken token) {
  const auto read = co_await readSettings(run);
  if (!read) co_return std::unexpected(read.error());
  if (token.isOver()) co_return {};
  const std::optional<SBUserSettingsRow> stored = *read;
  // What nobody has agreed on yet gives way to what is there already: a new computer does not reset the others.
  const bool isNewHere = !run->model.cache().preference(key(run->model, kAgreed));
  if (stored && (isNewHere || stored->updatedAt > agreedAt(run->model))) co_return {};
  SBUserSettingsRow row = settingsHere(run->model);
  row.updatedAt = run->client.serverNow();
  row.appVersion = THALVORN_VERSION;
  if (stored) {
    row.extraJson = stored->extraJson;
    row.seenVersion = stored->serverVersion;
  }
  auto sent = co_await sendSettings(run, row);
  if (!sent && sent.error().remedy == SBError::Remedy::updateSchema && run->schema.ownColumns) {
    if (token.isOver()) co_return {};
    run->schema.ownColumns = false;
    sent = co_await sendSettings(run, row);
  }
  if (!sent) co_return std::unexpected(sent.error());
  if (!token.isOver()) agree(run->model, row);
  co_return {};
}

SBTask<bool> downloadSettings(SyncRunPtr run, RunToken token) {
  const auto read = co_await readSettings(run);
  if (!read) co_return std::unexpected(read.error());
  if (token.isOver()) co_return false;
  const std::optional<SBUserSettingsRow> stored = *read;
  if (stored && (stored->updatedAt > agreedAt(run->model) || settingsWaiting(run->model) > 0)) {
    apply(run->model, *stored);
    SBUserSettingsRow now = settingsHere(run->model);
    now.updatedAt = stored->updatedAt;
    agree(run->model, now);
    run->log.say("⚙️ user settings: applied newer remote (" + formatTimestamp(stored->updatedAt) + ")");
  } else {
    run->log.say("⚙️ user settings: local in sync");
  }
  co_return true;
}

}  // namespace thalvorn
