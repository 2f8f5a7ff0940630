#include <QGuiApplication>
#include <cstdio>
#include <memory>

#include "app/composition.h"
#include "app/options.h"
#include "app/picture.h"
#include "app/restart.h"

namespace {

int finish(const QString& fault) {
  if (fault.isEmpty()) return 0;
  std::fprintf(stderr, "%s\n", qUtf8Printable(fault));
  return 1;
}

}  // namespace

int main(int argc, char* argv[]) {
  using namespace thalvorn::app;
  const QGuiApplication application(argc, argv);
  const auto options = parseOptions(QGuiApplication::arguments());
  if (!options) {
    std::fprintf(options.error().status == 0 ? stdout : stderr, "%s\n", qUtf8Printable(options.error().text));
    return options.error().status;
  }
  prepareApplication();
  if (options->selfTest) collectWarnings();
  auto program = std::make_unique<Composition>(*options);
  Composition& composition = *program;
  if (!composition.claimStore()) return 0;
  if (!composition.show()) return finish(QStringLiteral("The window could not be loaded."));
  if (options->selfTest) {
    const QStringList warnings = visitEveryPage(composition);
    return finish(warnings.isEmpty() ? QString() : QStringLiteral("%1 warning(s)").arg(warnings.size()));
  }
  if (!options->post.isEmpty()) composition.app().post(options->post);
  if (!options->screenshots.isEmpty()) return finish(savePictures(composition, options->screenshots));
  if (!options->screenshot.isEmpty()) return finish(savePicture(composition, options->screenshot));
  const int status = QGuiApplication::exec();
  const QString backup = composition.restoreFrom();
  const QString storeFile = composition.storeFile();
  program.reset();
  if (!backup.isEmpty()) restoreAndRestart(backup, storeFile);
  return status;
}
