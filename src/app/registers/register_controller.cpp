#include "app/registers/register_controller.h"

#include "app/export_choices.h"
#include "app/maintenance/task_texts.h"
#include "app/save_outcome.h"
#include "reports/pdf_renderer.h"

namespace thalvorn::app {

namespace {

QVariantList menuOf(const std::vector<RegisterPaper>& papers, bool ofOne) {
  QVariantList list;
  for (const RegisterPaper& paper : papers) {
    if (paper.ofOne != ofOne) continue;
    list.append(QVariantMap{{QStringLiteral("value"), paper.key},
                            {QStringLiteral("text"), paper.text},
                            {QStringLiteral("icon"), QStringLiteral("file-text")}});
  }
  return list;
}

}  // namespace

RegisterController::RegisterController(const RegisterTools& tools, QObject* parent) : QObject(parent), tools_(tools) {}

void RegisterController::follow() { connect(model(), &RegisterModel::refreshed, this, &RegisterController::renew); }

void RegisterController::renew() {
  figures_.clear();
  charts_.clear();
  if (model()->active()) {
    for (const RegisterFigure& figure : figuresShown()) {
      figures_.append(QVariantMap{{QStringLiteral("label"), figure.label},
                                  {QStringLiteral("value"), figure.value},
                                  {QStringLiteral("note"), figure.note}});
    }
    charts_ = chartsShown();
    charts_.removeIf([](const QVariant& chart) { return chart.toMap().isEmpty(); });
  }
  ++revision_;
  Q_EMIT changed();
}

std::optional<Uuid> RegisterController::vesselInView() const {
  return model()->scope() == RegisterScope::fleet ? std::nullopt : tools_.store.selectedVesselID();
}

bool RegisterController::hasVessel() const {
  return model()->scope() == RegisterScope::fleet ? !tools_.store.vessels().empty() : vesselInView().has_value();
}

QString RegisterController::vesselName() const {
  const auto shown = vesselInView();
  const Vessel* vessel = shown ? tools_.store.vessels().find(*shown) : nullptr;
  return vessel ? toQt(vessel->name) : QString();
}

QVariantList RegisterController::paperList() const { return menuOf(papers(), false); }
QVariantList RegisterController::recordPaperList() const { return menuOf(papers(), true); }

bool RegisterController::applyEdit(Edit edit) {
  if (edit.empty()) return true;
  const QString refusal = refusalOf(tools_.store.apply(std::move(edit)));
  if (!refusal.isEmpty()) say(refusal, QStringLiteral("overdue"));
  return refusal.isEmpty();
}

void RegisterController::removeChosen() {
  // Those that were ticked may be gone by the time the question is answered; without any, papers take the whole list.
  if (model()->chosenCount() == 0) return;
  remove(chosenIds());
  model()->clearChosen();
}

void RegisterController::exportCsv(const QUrl& file) {
  const std::string text = csvText(tools_.reports.setting(vesselInView()), csvFormat(tools_.preferences));
  const QString path = withEnding(file.toLocalFile(), QStringLiteral("csv"));
  if (const auto written = writeReportFile(path, QByteArray::fromStdString(text)); !written) {
    say(written.error().message, QStringLiteral("overdue"));
    return;
  }
  const auto rows = static_cast<double>(model()->chosenRows().size());
  say(QStringLiteral("%1 %2 saved to %3").arg(tools_.format.number(rows), rows == 1 ? singular() : plural(), path),
      QStringLiteral("ok"));
}

QString RegisterController::csvName() const { return {}; }

QString RegisterController::exportName() const {
  const QString ending = QStringLiteral("csv");
  if (const QString given = csvName(); !given.isEmpty()) return given + u'.' + ending;
  return fileNameFor(title(), vesselName(), tools_.store.now(), tools_.store.calendar(), ending);
}

}  // namespace thalvorn::app
