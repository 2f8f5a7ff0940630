#pragma once

#include <QStringList>

namespace thalvorn::app {

class Composition;

/// Saves a picture of the window as it stands; a message when the file cannot be written.
QString savePicture(Composition& composition, const QString& file);

/// Saves pictures of every page, light and dark, in the usual window sizes, into `folder`.
QString savePictures(Composition& composition, const QString& folder);

/// Opens every page in turn and returns every warning given meanwhile.
QStringList visitEveryPage(Composition& composition);

/// Collects the warnings of Qt and QML from now on, for `visitEveryPage`.
void collectWarnings();
QStringList collectedWarnings();

}  // namespace thalvorn::app
