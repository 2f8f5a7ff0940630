#include "platform/instance_protocol.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtEndian>
#include <algorithm>
#include <utility>

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

constexpr QByteArrayView kMagic = "THLV";
constexpr qsizetype kPrefixLength = 4 + 4 + 8;

Frame frameOf(const QString& type, QJsonObject head = {}, QByteArray body = {}) {
  head.insert("version"_L1, kInstanceProtocolVersion);
  head.insert("type"_L1, type);
  return {std::move(head), std::move(body)};
}

std::expected<QString, QString> textField(const QJsonObject& head, QLatin1StringView name) {
  const QJsonValue value = head.value(name);
  if (value.isString()) return value.toString();
  return std::unexpected(u"The message has no text \"%1\"."_s.arg(name));
}

}  // namespace

QString Frame::type() const { return head.value("type"_L1).toString(); }

QByteArray encode(const Frame& frame) {
  const QByteArray head = QJsonDocument(frame.head).toJson(QJsonDocument::Compact);
  QByteArray bytes;
  bytes.reserve(kPrefixLength + head.size() + frame.body.size());
  bytes.append(kMagic);
  bytes.resize(kPrefixLength);
  qToBigEndian(std::uint32_t(head.size()), bytes.data() + 4);
  qToBigEndian(std::uint64_t(frame.body.size()), bytes.data() + 8);
  bytes.append(head);
  bytes.append(frame.body);
  return bytes;
}

Frame raiseFrame(const RaiseRequest& request) {
  return frameOf(u"raise"_s, {{u"activationToken"_s, request.activationToken}, {u"deepLink"_s, request.deepLink}});
}

Frame commandFrame(const CommandRequest& request) {
  QJsonArray arguments;
  for (const std::string& argument : request.arguments) arguments.append(QString::fromStdString(argument));
  QJsonObject head{{u"arguments"_s, arguments},
                   {u"workingDirectory"_s, QString::fromStdString(request.workingDirectory)}};
  if (request.now) head.insert("now"_L1, qint64(request.now->time_since_epoch().count()));
  return frameOf(u"command"_s, std::move(head), request.input);
}

Frame replyFrame(const CommandReply& reply) {
  return frameOf(u"done"_s,
                 {{u"exit"_s, reply.exitStatus},
                  {u"stdout"_s, qint64(reply.output.size())},
                  {u"stderr"_s, qint64(reply.errorOutput.size())}},
                 reply.output + reply.errorOutput);
}

Frame workingFrame() { return frameOf(u"working"_s); }

Frame errorFrame(const QString& message) { return frameOf(u"error"_s, {{u"message"_s, message}}); }

std::expected<RaiseRequest, QString> toRaiseRequest(const Frame& frame) {
  auto token = textField(frame.head, "activationToken"_L1);
  if (!token) return std::unexpected(token.error());
  auto link = textField(frame.head, "deepLink"_L1);
  if (!link) return std::unexpected(link.error());
  return RaiseRequest{*token, *link};
}

std::expected<CommandRequest, QString> toCommandRequest(const Frame& frame) {
  CommandRequest request;
  const QJsonValue arguments = frame.head.value("arguments"_L1);
  if (!arguments.isArray()) return std::unexpected(u"The message has no list \"arguments\"."_s);
  for (const QJsonValue argument : arguments.toArray()) {
    if (!argument.isString()) return std::unexpected(u"An argument of the command is not a text."_s);
    request.arguments.push_back(argument.toString().toStdString());
  }
  auto directory = textField(frame.head, "workingDirectory"_L1);
  if (!directory) return std::unexpected(directory.error());
  request.workingDirectory = directory->toStdString();
  if (const QJsonValue now = frame.head.value("now"_L1); !now.isUndefined()) {
    if (!now.isDouble()) return std::unexpected(u"The message's \"now\" is not a number of seconds."_s);
    request.now = std::chrono::sys_seconds(std::chrono::seconds(now.toInteger()));
  }
  request.input = frame.body;
  return request;
}

std::expected<CommandReply, QString> toCommandReply(const Frame& frame) {
  const qint64 output = frame.head.value("stdout"_L1).toInteger(-1);
  const qint64 errorOutput = frame.head.value("stderr"_L1).toInteger(-1);
  const qint64 all = frame.body.size();
  if (!frame.head.value("exit"_L1).isDouble() || output < 0 || output > all || errorOutput != all - output) {
    return std::unexpected(u"The answer's exit status or lengths are wrong."_s);
  }
  return CommandReply{frame.head.value("exit"_L1).toInt(), frame.body.first(output), frame.body.sliced(output)};
}

void FrameReader::feed(const QByteArray& bytes) { buffer_.append(bytes); }

std::expected<std::optional<Frame>, QString> FrameReader::next() {
  const qsizetype known = std::min(buffer_.size(), kMagic.size());
  if (QByteArrayView(buffer_).first(known) != kMagic.first(known)) {
    return std::unexpected(u"This is not a message of the program."_s);
  }
  if (buffer_.size() < kPrefixLength) return std::nullopt;

  const auto headLength = qFromBigEndian<std::uint32_t>(buffer_.constData() + 4);
  const auto bodyLength = qFromBigEndian<std::uint64_t>(buffer_.constData() + 8);
  if (headLength > kHeadLimit || bodyLength > kBodyLimit) {
    return std::unexpected(u"The message is too long: at most %1 MB of arguments and %2 MB of data are taken."_s.arg(
        QString::number(kHeadLimit >> 20U), QString::number(kBodyLimit >> 20U)));
  }
  const qsizetype bodyStart = kPrefixLength + qsizetype(headLength);
  const qsizetype end = bodyStart + qsizetype(bodyLength);
  if (buffer_.size() < end) return std::nullopt;

  const QJsonDocument head = QJsonDocument::fromJson(buffer_.sliced(kPrefixLength, qsizetype(headLength)));
  if (!head.isObject()) return std::unexpected(u"The head of the message is not a JSON object."_s);
  Frame frame{head.object(), buffer_.sliced(bodyStart, qsizetype(bodyLength))};
  buffer_.remove(0, end);
  if (buffer_.isEmpty()) buffer_ = QByteArray();
  if (frame.head.value("version"_L1).toInt() != kInstanceProtocolVersion) {
    return std::unexpected(
        u"The window and this command are of different versions. Close the window, or start the same version."_s);
  }
  return frame;
}

}  // namespace thalvorn
