#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <chrono>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <vector>

/// What processes of the program say to each other over the socket of the window that holds a store.
///
/// A frame is: the four bytes "THLV"; the length of the head (32 bit) and of the body (64 bit), big-endian; the head, a
/// JSON object with `version` and `type`; the body, raw bytes. Bytes that a command reads and writes travel in the
/// body, never as JSON text, so that 50 MB of them cost what copying them costs.
///
/// | type      | direction | head                                                       | body            |
/// |-----------|-----------|------------------------------------------------------------|-----------------|
/// | `raise`   | → window  | `activationToken`, `deepLink`                              |                 |
/// | `command` | → window  | `arguments`, `workingDirectory`, `now` (seconds, optional) | standard input  |
/// | `done`    | ← window  | `exit`, `stdout` and `stderr` (lengths in bytes)           | both, in order  |
/// | `working` | ← window  | sent every few seconds while a command runs                |                 |
/// | `error`   | ← window  | `message`                                                  |                 |
namespace thalvorn {

/// Asks the window to come to the front.
struct RaiseRequest {
  QString activationToken;  ///< what the desktop gave the second start (XDG_ACTIVATION_TOKEN); may be empty
  QString deepLink;         ///< the `thalvorn://` address to open; may be empty, may hold a secret: never logged

  bool operator==(const RaiseRequest&) const = default;
};

/// One command line, to be carried out by whoever holds the store.
struct CommandRequest {
  std::vector<std::string> arguments;           ///< without the program's name, UTF-8
  QByteArray input;                             ///< all of standard input
  std::string workingDirectory;                 ///< what relative file names in the arguments are relative to
  std::optional<std::chrono::sys_seconds> now;  ///< evaluate as of this moment instead of the present one

  bool operator==(const CommandRequest&) const = default;
};

struct CommandReply {
  int exitStatus = 0;
  QByteArray output;       ///< for standard output
  QByteArray errorOutput;  ///< for standard error

  bool operator==(const CommandReply&) const = default;
};

/// One message as it travels.
struct Frame {
  QJsonObject head;
  QByteArray body;

  QString type() const;
};

inline constexpr int kInstanceProtocolVersion = 1;
inline constexpr std::uint32_t kHeadLimit = 8U << 20U;    ///< longest head accepted, bytes
inline constexpr std::uint64_t kBodyLimit = 1ULL << 30U;  ///< longest body accepted, bytes

QByteArray encode(const Frame& frame);

Frame raiseFrame(const RaiseRequest& request);
Frame commandFrame(const CommandRequest& request);
Frame replyFrame(const CommandReply& reply);
Frame workingFrame();
Frame errorFrame(const QString& message);

/// The messages out of their frames. The error says which part is missing or of the wrong kind.
std::expected<RaiseRequest, QString> toRaiseRequest(const Frame& frame);
std::expected<CommandRequest, QString> toCommandRequest(const Frame& frame);
std::expected<CommandReply, QString> toCommandReply(const Frame& frame);

/// Cuts a stream of bytes, arriving in pieces of any size, into frames. After an error nothing more is read: where the
/// next frame begins is then unknown.
class FrameReader {
 public:
  void feed(const QByteArray& bytes);

  /// The next whole frame; nothing when more bytes are needed; an error when what came is not this protocol, not this
  /// version of it, or longer than the limits.
  std::expected<std::optional<Frame>, QString> next();

  /// True in the middle of a frame.
  bool waiting() const { return !buffer_.isEmpty(); }

 private:
  QByteArray buffer_;
};

}  // namespace thalvorn
