#pragma once

#include <qqmlregistration.h>

#include "app/record_form.h"
#include "core/vessel.h"

namespace thalvorn::app {

/// A form over a vessel that belongs to no store, for the component gallery.
class SampleVesselForm : public RecordFormOf<Vessel> {
  Q_OBJECT
  QML_ELEMENT

 public:
  explicit SampleVesselForm(QObject* parent = nullptr);
};

}  // namespace thalvorn::app
