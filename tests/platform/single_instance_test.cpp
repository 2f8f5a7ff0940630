#include "platform/single_instance.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QCoroSignal>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <stdexcept>
#include <thread>

#include "platform/await.h"
#include "platform/store_access.h"
#include "platform/user_folders.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::eventually;

using Window = std::unique_ptr<SingleInstance>;

QCoro::Task<CommandReply> echo(CommandRequest request) {
  co_return CommandReply{int(request.arguments.size()), request.input,
                         QByteArray::fromStdString(request.workingDirectory)};
}

QCoro::Task<CommandReply> answerAt(test::Gate* gate, CommandRequest request) {
  co_await qCoro(gate, &test::Gate::opened);
  if (request.arguments.empty()) throw std::runtime_error("no command given");
  co_return CommandReply{0, "at last", {}};
}

class SingleInstanceTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(folder_.isValid());
    qputenv("XDG_RUNTIME_DIR", folder_.path().toUtf8());
  }
  void TearDown() override { qunsetenv("XDG_RUNTIME_DIR"); }

  QString store() const { return folder_.filePath(u"fleet.store"_s); }

  Window openWindow(SingleInstance::Timings timings = {}) {
    auto claimed = claimForWindow(store(), 0ms, timings);
    if (!claimed) throw std::runtime_error(claimed.error().message.toStdString());
    return std::get<Window>(std::move(*claimed));
  }

  InstanceClient client() {
    auto claimed = claimForCommand(store(), 0ms);
    if (!claimed) throw std::runtime_error(claimed.error().message.toStdString());
    return std::get<InstanceClient>(std::move(*claimed));
  }

  /// Sends bytes as they are and returns what came back until the window closed the connection.
  QByteArray exchangeRaw(const QByteArray& bytes) {
    QLocalSocket socket;
    socket.connectToServer(*instanceSocketPath(store()));
    EXPECT_TRUE(socket.waitForConnected());
    socket.write(bytes);
    EXPECT_TRUE(eventually([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
    return socket.readAll();
  }

  QTemporaryDir folder_;
};

TEST_F(SingleInstanceTest, SecondStartRaisesTheFirstWindow) {
  const Window window = openWindow();
  QSignalSpy raised(window.get(), &SingleInstance::raiseRequested);

  qputenv("XDG_ACTIVATION_TOKEN", "token-7");
  const RaiseRequest request = raiseRequestFromEnvironment(u"thalvorn://open/tasks/x"_s);
  qunsetenv("XDG_ACTIVATION_TOKEN");
  auto second = claimForWindow(folder_.filePath(u"./fleet.store"_s), 0ms);
  ASSERT_TRUE(second.has_value());
  ASSERT_TRUE(std::get<InstanceClient>(*second).raiseAndWait(request).has_value());

  ASSERT_EQ(raised.size(), 1);
  EXPECT_EQ(raised.at(0).at(0).value<RaiseRequest>(), (RaiseRequest{u"token-7"_s, u"thalvorn://open/tasks/x"_s}));

  // Another store is another window's business.
  auto other = claimForWindow(folder_.filePath(u"other.store"_s), 0ms);
  EXPECT_TRUE(other.has_value() && std::holds_alternative<Window>(*other));
}

TEST_F(SingleInstanceTest, CommandsTravelWholeIncludingLargeInput) {
  const Window window = openWindow();
  window->setCommandHandler(echo);
  QByteArray large(50'000'000, Qt::Uninitialized);
  for (qsizetype i = 0; i < large.size(); ++i) large[i] = char(i * 31 + i / 251);

  const CommandRequest request{{"put", "tasks", "Größe \"1\"\n"}, large, "/tmp/ütf", std::chrono::sys_seconds(5s)};
  const auto reply = client().runAndWait(request);

  ASSERT_TRUE(reply.has_value()) << reply.error().message.toStdString();
  EXPECT_EQ(reply->exitStatus, 3);
  EXPECT_TRUE(reply->output == large);
  EXPECT_EQ(reply->errorOutput, "/tmp/ütf");

  const auto same = toCommandRequest(commandFrame(request));
  EXPECT_TRUE(same.has_value() && *same == request);
}

TEST_F(SingleInstanceTest, CommandsWaitForTheHandlerAndRunSideBySide) {
  const Window window = openWindow();
  QSignalSpy idle(window.get(), &SingleInstance::idle);
  int answered = 0;
  for (int i = 0; i < 20; ++i) {
    QCoro::connect(client().run({{"list"}, QByteArray::number(i), {}, {}}), window.get(),
                   [&answered, i](const std::expected<CommandReply, InstanceError>& reply) {
                     EXPECT_TRUE(reply.has_value() && reply->output == QByteArray::number(i));
                     ++answered;
                   });
  }
  ASSERT_TRUE(eventually([&] { return window->runningCommands() == 20; }));
  EXPECT_EQ(answered, 0);
  window->setCommandHandler(echo);
  EXPECT_TRUE(eventually([&] { return answered == 20; }));
  EXPECT_EQ(window->runningCommands(), 0);
  EXPECT_GE(idle.size(), 1);
}

TEST_F(SingleInstanceTest, AFailingHandlerIsAnAnswer) {
  const Window window = openWindow();
  test::Gate gate;
  window->setCommandHandler([&gate](CommandRequest request) {
    QTimer::singleShot(0, &gate, &test::Gate::opened);
    return answerAt(&gate, std::move(request));
  });
  const auto reply = client().runAndWait({});
  ASSERT_TRUE(reply.has_value());
  EXPECT_EQ(reply->exitStatus, 1);
  EXPECT_TRUE(reply->errorOutput.contains("no command given")) << reply->errorOutput.toStdString();
}

TEST_F(SingleInstanceTest, ALongCommandIsWaitedForAndASilentWindowIsNot) {
  test::Gate gate;
  const auto handler = [&gate](CommandRequest request) { return answerAt(&gate, std::move(request)); };
  {
    const Window window = openWindow({.idle = 30s, .heartbeat = 50ms});
    window->setCommandHandler(handler);
    QTimer::singleShot(1500ms, &gate, &test::Gate::opened);
    const auto reply = client().runAndWait({{"import-tasks"}, {}, {}, {}}, 1s);
    ASSERT_TRUE(reply.has_value()) << reply.error().message.toStdString();
    EXPECT_EQ(reply->output, "at last");
  }
  const Window window = openWindow({.idle = 30s, .heartbeat = 1h});
  window->setCommandHandler(handler);
  const auto reply = client().runAndWait({{"list"}, {}, {}, {}}, 100ms);
  ASSERT_FALSE(reply.has_value());
  EXPECT_EQ(reply.error().problem, InstanceProblem::silent);
  EXPECT_TRUE(reply.error().message.contains(u"not answered for 0.1 s"_s)) << reply.error().message.toStdString();
  Q_EMIT gate.opened();
  EXPECT_TRUE(eventually([&] { return window->runningCommands() == 0; }))
      << "a command whose asker has gone still ends";
}

TEST_F(SingleInstanceTest, AWindowThatClosesMeanwhileIsReported) {
  test::Gate gate;
  Window window = openWindow();
  window->setCommandHandler([&gate](CommandRequest request) { return answerAt(&gate, std::move(request)); });
  const InstanceClient late = client();
  std::optional<std::expected<CommandReply, InstanceError>> reply;
  QCoro::connect(late.run({{"list"}, {}, {}, {}}), QCoreApplication::instance(),
                 [&reply](const std::expected<CommandReply, InstanceError>& it) { reply = it; });
  ASSERT_TRUE(eventually([&] { return window->runningCommands() == 1; }));
  window.reset();
  Q_EMIT gate.opened();
  ASSERT_TRUE(eventually([&] { return reply.has_value(); }));
  ASSERT_FALSE(reply->has_value());
  EXPECT_EQ(reply->error().problem, InstanceProblem::unreachable);
  EXPECT_TRUE(reply->error().message.contains(u"closed before it answered"_s));

  const auto gone = late.runAndWait({{"list"}, {}, {}, {}});
  ASSERT_FALSE(gone.has_value());
  EXPECT_TRUE(gone.error().message.contains(u"cannot be reached"_s)) << gone.error().message.toStdString();
  EXPECT_TRUE(std::holds_alternative<StoreLock>(*claimForCommand(store(), 0ms)));
}

TEST_F(SingleInstanceTest, MalformedAndForeignMessagesAreAnsweredWithAnError) {
  const Window window = openWindow({.idle = 200ms, .heartbeat = 50ms});
  window->setCommandHandler(echo);
  QSignalSpy raised(window.get(), &SingleInstance::raiseRequested);

  const auto frame = [](const QByteArray& head) {
    QByteArray bytes("THLV\0\0\0\0\0\0\0\0\0\0\0\0", 16);
    bytes[7] = char(head.size());
    return bytes + head;
  };
  const std::vector<std::pair<QByteArray, QString>> cases{
      {"GET / HTTP/1.1\r\n\r\n", u"not a message of the program"_s},
      {"X", u"not a message of the program"_s},
      {QByteArray("THLV\xff\xff\xff\xff\0\0\0\0\0\0\0\0", 16), u"too long"_s},
      {QByteArray("THLV\0\0\0\2\xff\xff\xff\xff\xff\xff\xff\xff", 16), u"too long"_s},
      {frame("[]"), u"not a JSON object"_s},
      {frame("{\"version\":"), u"not a JSON object"_s},
      {frame(R"({"version":2,"type":"raise"})"), u"different versions"_s},
      {frame(R"({"version":1,"type":"format-disk"})"), u"format-disk"_s},
      {frame(R"({"version":1})"), u"does not know"_s},
      {frame(R"({"version":1,"type":"raise","deepLink":""})"), u"activationToken"_s},
      {frame(R"({"version":1,"type":"command","arguments":"list"})"), u"arguments"_s},
      {frame(R"({"version":1,"type":"command","arguments":[1]})"), u"not a text"_s},
      {frame(R"({"version":1,"type":"command","arguments":[],"workingDirectory":"","now":"x"})"), u"now"_s},
      {encode(raiseFrame({})).chopped(1), u"not completed in time"_s},
  };
  for (const auto& [bytes, message] : cases) {
    FrameReader reader;
    reader.feed(exchangeRaw(bytes));
    const auto answer = reader.next();
    ASSERT_TRUE(answer.has_value() && answer->has_value()) << bytes.toStdString();
    EXPECT_EQ((*answer)->type(), u"error"_s);
    const QString text = (*answer)->head.value("message"_L1).toString();
    EXPECT_TRUE(text.contains(message)) << bytes.toStdString() << " -> " << text.toStdString();
  }
  EXPECT_TRUE(exchangeRaw("").isEmpty());  // who says nothing is let go
  EXPECT_EQ(raised.size(), 0);
  EXPECT_TRUE(client().runAndWait({}).has_value());
}

TEST_F(SingleInstanceTest, FramesArriveInPiecesOfAnySize) {
  const QByteArray both = encode(raiseFrame({u"a"_s, u"b"_s})) + encode(replyFrame({4, "out", "err"}));
  for (qsizetype piece : {1, 2, 7, 16, 17, 100}) {
    FrameReader reader;
    std::vector<Frame> frames;
    for (qsizetype at = 0; at < both.size(); at += piece) {
      reader.feed(both.mid(at, piece));
      for (auto frame = reader.next(); frame.has_value() && frame->has_value(); frame = reader.next()) {
        frames.push_back(**frame);
      }
    }
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_EQ(*toRaiseRequest(frames[0]), (RaiseRequest{u"a"_s, u"b"_s}));
    EXPECT_EQ(*toCommandReply(frames[1]), (CommandReply{4, "out", "err"}));
    EXPECT_FALSE(reader.waiting());
  }
  Frame wrong = replyFrame({0, "out", "err"});
  wrong.head.insert("stdout"_L1, 7);
  EXPECT_FALSE(toCommandReply(wrong).has_value());
}

TEST_F(SingleInstanceTest, AStoreWhoseWindowWasKilledIsTakenOver) {
  QProcess other;
  other.start(QCoreApplication::applicationFilePath(), {u"--hold-store"_s, store()});
  ASSERT_TRUE(eventually([&] { return other.canReadLine(); })) << other.readAllStandardError().toStdString();

  const auto holder = StoreLock::holder(store());
  ASSERT_TRUE(holder.has_value());
  EXPECT_EQ(holder->process, other.processId());
  EXPECT_EQ(client().window().process, other.processId());
  EXPECT_EQ(StoreLock::tryAcquire(store(), StoreRole::command).error().problem, InstanceProblem::busy);

  other.kill();
  ASSERT_TRUE(other.waitForFinished());
  ASSERT_TRUE(QFile::exists(holder->socketPath)) << "the killed window left its socket behind";
  const Window window = openWindow();
  window->setCommandHandler(echo);
  EXPECT_EQ(client().window().process, QCoreApplication::applicationPid());
  EXPECT_TRUE(client().runAndWait({{"list"}, {}, {}, {}}).has_value());
}

TEST_F(SingleInstanceTest, CommandsExcludeEachOther) {
  auto first = StoreLock::tryAcquire(store(), StoreRole::command);
  ASSERT_TRUE(first.has_value());
  const auto refused = claimForCommand(store(), 20ms);
  ASSERT_FALSE(refused.has_value());
  EXPECT_EQ(refused.error().problem, InstanceProblem::busy);
  EXPECT_TRUE(refused.error().message.contains(
      u"another thalvorn-cli command (process %1) after waiting 0.02 s"_s.arg(QCoreApplication::applicationPid())))
      << refused.error().message.toStdString();

  bool got = false;
  {
    std::jthread second([&] { got = StoreLock::acquire(store(), StoreRole::command, 20s).has_value(); });
    StoreLock moved = std::move(*first);
    const StoreLock released = std::move(moved);
  }
  EXPECT_TRUE(got);
  EXPECT_FALSE(StoreLock::holder(store()).has_value()) << "a free store names no holder";
}

TEST_F(SingleInstanceTest, NothingIsOpenToOtherUsers) {
  const Window window = openWindow();
  const QString socket = StoreLock::holder(store())->socketPath;
  EXPECT_TRUE(socket.startsWith(folder_.path()));
  EXPECT_TRUE(isPrivate(socket));
  EXPECT_TRUE(isPrivate(QFileInfo(socket).path()));
  EXPECT_TRUE(isPrivate(StoreLock::lockFilePath(store())));

  const auto nowhere = claimForCommand(folder_.filePath(u"missing/fleet.store"_s), 0ms);
  ASSERT_FALSE(nowhere.has_value());
  EXPECT_EQ(nowhere.error().problem, InstanceProblem::unavailable);
  EXPECT_TRUE(nowhere.error().message.contains(u"missing/fleet.store.lock"_s));
}

}  // namespace
}  // namespace thalvorn
