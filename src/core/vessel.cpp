#include "core/vessel.h"

#include <array>

namespace thalvorn {
namespace {

struct Meter {
  std::string_view label;
  double Vessel::* hours;
};

constexpr std::array<Meter, caseCount<HourSource>> kMeters{{{"Engine 1", &Vessel::engineHours},
                                                            {"Engine 2", &Vessel::engine2Hours},
                                                            {"Engine 3", &Vessel::engine3Hours},
                                                            {"Gen 1", &Vessel::generator1Hours},
                                                            {"Gen 2", &Vessel::generator2Hours},
                                                            {"Hydraulic", &Vessel::hydraulicHours}}};

const Meter& meter(HourSource source) { return kMeters[static_cast<std::size_t>(source)]; }

}  // namespace

double Vessel::reading(Choice<HourSource> source) const {
  const auto known = source.known();
  return known ? this->*meter(*known).hours : 0.0;
}

void Vessel::setReading(HourSource source, double hours) { this->*meter(source).hours = hours; }

bool Vessel::hasMeter(Choice<HourSource> source) const {
  const auto known = source.known();
  if (!known) return false;
  switch (*known) {
    case HourSource::engine:
      return true;
    case HourSource::engine2:
      return numberOfEngines >= 2;
    case HourSource::engine3:
      return numberOfEngines >= 3;
    case HourSource::generator1:
      return hasGenerator;
    case HourSource::generator2:
      return hasGenerator && numberOfGenerators >= 2;
    case HourSource::hydraulic:
      return hasHydraulic;
  }
  return false;
}

std::vector<HourSource> Vessel::meters() const {
  std::vector<HourSource> fitted;
  for (const HourSource source : allCases<HourSource>())
    if (hasMeter(source)) fitted.push_back(source);
  return fitted;
}

std::string_view meterLabel(HourSource source) { return meter(source).label; }

}  // namespace thalvorn
