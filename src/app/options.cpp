#include "app/options.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include "app/module_table.h"

namespace thalvorn::app {

namespace {

std::optional<QSize> parseSize(const QString& text) {
  static const QRegularExpression form(QStringLiteral("^(\\d{3,5})x(\\d{3,5})$"));
  const auto found = form.match(text);
  if (!found.hasMatch()) return std::nullopt;
  return QSize(found.captured(1).toInt(), found.captured(2).toInt());
}

}  // namespace

std::expected<Options, OptionsEnd> parseOptions(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Thalvorn Yacht Systems: the maintenance and records of your yachts."));
  const QCommandLineOption help = parser.addHelpOption();
  const QCommandLineOption version = parser.addVersionOption();
  const auto add = [&](const char16_t* name, const char16_t* text, const char16_t* value = u"") {
    const QCommandLineOption option(QString::fromUtf16(name), QString::fromUtf16(text), QString::fromUtf16(value));
    parser.addOption(option);
    return option;
  };
  const auto demo = add(u"demo", u"Open the demo fleet.");
  const auto store = add(u"store", u"Use this store file.", u"file");
  const auto selfTest = add(u"self-test", u"Load every page and fail on any warning.");
  const auto screenshot = add(u"screenshot", u"Save a picture of the window and end.", u"file");
  const auto screenshots = add(u"screenshots", u"Save pictures of every page and end.", u"folder");
  const auto page = add(u"page", u"Open this page first.", u"name");
  const auto post = add(u"post", u"Post this notification once the page is open, e.g. openSearch.", u"name");
  const auto size = add(u"size", u"Size of the window in pictures.", u"WxH");
  const auto scheme = add(u"scheme", u"Colours: light or dark.", u"scheme");
  const auto backend = add(u"backend", u"Use the fleet server at this address.", u"url");
  const auto key = add(u"key", u"The fleet server's public key.", u"key");
  parser.addPositionalArgument(QStringLiteral("link"), QStringLiteral("A thalvorn:// link to follow."),
                               QStringLiteral("[link]"));

  const auto refuse = [](const QString& text) { return std::unexpected(OptionsEnd{text, 2}); };
  if (!parser.parse(arguments)) return refuse(parser.errorText());
  if (parser.isSet(help)) return std::unexpected(OptionsEnd{parser.helpText(), 0});
  if (parser.isSet(version)) return std::unexpected(OptionsEnd{QStringLiteral("thalvorn " THALVORN_VERSION), 0});

  Options options;
  options.demo = parser.isSet(demo);
  options.store = parser.value(store);
  options.selfTest = parser.isSet(selfTest);
  options.screenshot = parser.value(screenshot);
  options.screenshots = parser.value(screenshots);
  options.page = parser.value(page);
  options.post = parser.value(post);
  options.scheme = parser.value(scheme);
  options.backend = parser.value(backend);
  options.backendKey = parser.value(key);
  if (!options.page.isEmpty() && !findPage(options.page)) {
    return refuse(QStringLiteral("There is no page named “%1”.").arg(options.page));
  }
  if (!options.scheme.isEmpty() && options.scheme != u"light" && options.scheme != u"dark") {
    return refuse(QStringLiteral("--scheme is light or dark, not “%1”.").arg(options.scheme));
  }
  if (parser.isSet(size)) {
    const auto read = parseSize(parser.value(size));
    if (!read) return refuse(QStringLiteral("--size is written as 1366x768, not “%1”.").arg(parser.value(size)));
    options.size = *read;
  }
  const QStringList rest = parser.positionalArguments();
  if (rest.size() > 1) return refuse(QStringLiteral("Only one link can be opened at a time."));
  if (!rest.isEmpty()) {
    if (!rest.first().startsWith(u"thalvorn://")) {
      return refuse(QStringLiteral("“%1” is not a thalvorn:// link.").arg(rest.first()));
    }
    options.link = rest.first();
  }
  return options;
}

}  // namespace thalvorn::app
