#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <expected>

namespace thalvorn::app {

/// What the desktop program was started with.
struct Options {
  bool demo = false;      ///< open the demo fleet
  QString store;          ///< the store's file; empty = in the user's data folder
  bool selfTest = false;  ///< load every page, fail on any warning
  QString screenshot;     ///< save a picture of the window here and end
  QString screenshots;    ///< save pictures of every page into this folder and end
  QString page;           ///< page to open first
  QString post;           ///< a menu command's notification to post once the page is open
  QSize size{1366, 768};  ///< of the window in pictures
  QString scheme;         ///< "light" or "dark"; empty = as set
  QString backend;        ///< the fleet server's address; empty = as deployed on this computer
  QString backendKey;     ///< the public key that goes with it
  QString link;           ///< a deep link to follow

  /// Draws pages for a picture or a test: no remembered window, no motion, no desktop services.
  bool pictured() const { return selfTest || !screenshot.isEmpty() || !screenshots.isEmpty(); }
};

/// Why the program does not go on: a message for standard error (exit status 2), or the help or version text (0).
struct OptionsEnd {
  QString text;
  int status = 0;
};

/// Reads the command line (with the program's name first).
std::expected<Options, OptionsEnd> parseOptions(const QStringList& arguments);

}  // namespace thalvorn::app
