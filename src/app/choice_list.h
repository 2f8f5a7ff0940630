#pragma once

#include <QVariant>

#include "app/text.h"
#include "base/enums.h"

namespace thalvorn::app {

/// The cases of an enumeration for a field to choose from, in their order: {value, text}.
template <class E>
QVariantList choicesOf() {
  QVariantList list;
  for (const EnumText& entry : EnumTexts<E>::table)
    list.append(QVariantMap{{QStringLiteral("value"), toQt(entry.raw)}, {QStringLiteral("text"), toQt(entry.display)}});
  return list;
}

}  // namespace thalvorn::app
