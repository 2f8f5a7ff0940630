// Reading 100,000 tasks from the cache's form and writing them, beside simdjson visiting every value, memcpy, and Qt's
// own JSON classes filling the same records.

#include <simdjson.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <cstring>

#include "figures.h"
#include "tasks.h"

using namespace thalvorn;

namespace {

void visit(simdjson::ondemand::value value, std::size_t& seen) {
  using simdjson::ondemand::json_type;
  switch (value.type().value_unsafe()) {
    case json_type::object:
      for (auto member : value.get_object()) {
        simdjson::ondemand::value inner;
        if (!member.value().get(inner)) visit(inner, seen);
      }
      break;
    case json_type::array:
      for (auto element : value.get_array()) {
        simdjson::ondemand::value inner;
        if (!element.get(inner)) visit(inner, seen);
      }
      break;
    case json_type::string:
      seen += value.get_string().value_unsafe().size();
      break;
    case json_type::number:
      seen += value.get_double().value_unsafe() != 0;
      break;
    case json_type::boolean:
      seen += value.get_bool().value_unsafe();
      break;
    case json_type::null:
      break;
  }
}

std::vector<MaintenanceTask> readWithQt(const QByteArray& json) {
  const QJsonArray array = QJsonDocument::fromJson(json).array();
  std::vector<MaintenanceTask> tasks;
  tasks.reserve(static_cast<std::size_t>(array.size()));
  const auto text = [](const QJsonObject& o, const char* key) {
    return o[QLatin1String(key)].toString().toStdString();
  };
  for (const QJsonValue& element : array) {
    const QJsonObject o = element.toObject();
    MaintenanceTask& task = tasks.emplace_back();
    task.id = Uuid::parse(text(o, "id")).value();
    task.vesselID = Uuid::parse(text(o, "vesselID")).value();
    task.title = text(o, "title");
    task.notes = text(o, "notes");
    task.category = Choice<TaskCategory>::fromRaw(text(o, "category"));
    task.triggerType = Choice<TriggerType>::fromRaw(text(o, "triggerType"));
    task.hourSource = Choice<HourSource>::fromRaw(text(o, "hourSource"));
    const auto number = [&](const char* key, auto& field) {
      const QJsonValue value = o[QLatin1String(key)];
      if (value.isDouble())
        field = static_cast<typename std::remove_cvref_t<decltype(field)>::value_type>(value.toDouble());
    };
    if (o.contains(QLatin1String("dueDate"))) task.dueDate = parseTimestamp(text(o, "dueDate"));
    number("recurringDays", task.recurringDays);
    number("dueAtEngineHours", task.dueAtEngineHours);
    number("recurringEngineHours", task.recurringEngineHours);
    task.isCompleted = o[QLatin1String("isCompleted")].toBool();
    for (const QJsonValue& path : o[QLatin1String("photoPaths")].toArray())
      task.photoPaths.push_back(path.toString().toStdString());
  }
  return tasks;
}

QByteArray writeWithQt(const std::vector<MaintenanceTask>& tasks) {
  const auto text = [](std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); };
  QJsonArray array;
  for (const MaintenanceTask& task : tasks) {
    QJsonObject o{{QStringLiteral("id"), text(task.id.toString())},
                  {QStringLiteral("vesselID"), text(task.vesselID.toString())},
                  {QStringLiteral("title"), text(task.title)},
                  {QStringLiteral("notes"), text(task.notes)},
                  {QStringLiteral("category"), text(task.category.raw())},
                  {QStringLiteral("triggerType"), text(task.triggerType.raw())},
                  {QStringLiteral("hourSource"), text(task.hourSource.raw())},
                  {QStringLiteral("isCompleted"), task.isCompleted},
                  {QStringLiteral("photoData"), QJsonArray()},
                  {QStringLiteral("photoPaths"), QJsonArray()}};
    if (task.dueDate) o[QLatin1String("dueDate")] = text(formatTimestamp(*task.dueDate));
    if (task.recurringDays) o[QLatin1String("recurringDays")] = static_cast<qint64>(*task.recurringDays);
    if (task.dueAtEngineHours) o[QLatin1String("dueAtEngineHours")] = *task.dueAtEngineHours;
    if (task.recurringEngineHours) o[QLatin1String("recurringEngineHours")] = *task.recurringEngineHours;
    array.append(o);
  }
  return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

}  // namespace

int main() {
  constexpr std::size_t kCount = 100'000;
  const auto tasks = bench::makeTasks(kCount, Uuid::named(Uuid{}, "vessel"), parseTimestamp("2026-11-21").value());
  const std::string json = listToJson(tasks);
  const QByteArray qt_json = QByteArray::fromStdString(json);
  const simdjson::padded_string padded(json);

  const auto decode = [&] { bench::keep(listFromJson<MaintenanceTask>(json)->records.size()); };
  const auto visiting = bench::inTurn(9, decode, [&] {
    simdjson::ondemand::parser parser;
    std::size_t seen = 0;
    simdjson::ondemand::document document = parser.iterate(padded);
    for (auto element : document.get_array()) visit(element.value_unsafe(), seen);
    bench::keep(seen);
  });
  visiting.atMost("decode 100,000 tasks from the cache", "simdjson visiting every value", 5);
  const auto reading = bench::inTurn(5, decode, [&] { bench::keep(readWithQt(qt_json).size()); });
  reading.faster("decode 100,000 tasks from the cache", "QJsonDocument", 4);

  const auto encode = [&] { bench::keep(listToJson(tasks).size()); };
  std::string copy(json.size(), '\0');
  const auto copying = bench::inTurn(9, encode, [&] {
    std::memcpy(copy.data(), json.data(), json.size());
    bench::keep(copy);
  });
  copying.atMost("encode 100,000 tasks", "memcpy of the output", 20);
  const auto writing = bench::inTurn(5, encode, [&] { bench::keep(writeWithQt(tasks).size()); });
  writing.faster("encode 100,000 tasks", "QJsonDocument", 10);
}
