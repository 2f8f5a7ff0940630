#include "app/sample_form.h"

namespace thalvorn::app {

namespace {

const Format& sampleFormat() {
  static const SystemClock clock;
  static const Format format(clock);
  return format;
}

Vessel sampleVessel() {
  Vessel vessel;
  vessel.name = "M/Y Meridian";
  vessel.type = "Motor yacht";
  vessel.lengthFeet = 154.2;
  vessel.engineHours = 4812.4;
  vessel.numberOfEngines = 2;
  vessel.hasGenerator = true;
  return vessel;
}

}  // namespace

SampleVesselForm::SampleVesselForm(QObject* parent) : RecordFormOf(sampleVessel(), sampleFormat(), parent) {
  addRule("numberOfEngines", [](const Vessel& vessel) {
    return vessel.engine3Hours > 0 && vessel.numberOfEngines < 3
               ? QStringLiteral("Engine 3 has run; three engines are needed.")
               : QString();
  });
}

}  // namespace thalvorn::app
