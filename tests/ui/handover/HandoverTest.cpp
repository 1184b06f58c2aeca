#include "ui/handover/Handover.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace mirovane {
namespace {

class HandoverTest : public testing::Test {
protected:
    QTemporaryDir folder;
    QString sockets = folder.filePath(QStringLiteral("mirovane"));
    HandoverRequest heard;

    /// Another start of the program, while this one goes on.
    std::optional<HandoverAnswer> start(const HandoverRequest& request) {
        std::optional<HandoverAnswer> answer;
        const std::unique_ptr<QThread> other(QThread::create([&] { answer = handOver(sockets, request); }));
        other->start();
        EXPECT_TRUE(QTest::qWaitFor([&other] { return other->isFinished(); }, 20'000));
        return answer;
    }
    CHandoverServer::Handler office() {
        return [this](const HandoverRequest& request) {
            heard = request;
            if (!request.datafile.isEmpty() && request.datafile != QStringLiteral("/srv/office \u00e4.mv"))
                return HandoverAnswer::Elsewhere;
            return request.find == QStringLiteral("nobody") ? HandoverAnswer::NotFound
                                                            : HandoverAnswer::Shown;
        };
    }
};

TEST_F(HandoverTest, AStartFindsTheWindowThatHasItsDatafile) {
    EXPECT_FALSE(start({{}, {}}).has_value()) << "no window is open";
    const CHandoverServer server(sockets, office());
    ASSERT_TRUE(server.listening());
    EXPECT_EQ(start({QStringLiteral("/srv/office \u00e4.mv"), QStringLiteral("M\u00fcller \"7\"\n")}),
              HandoverAnswer::Shown);
    EXPECT_EQ(heard.find, QStringLiteral("M\u00fcller \"7\"\n"));
    EXPECT_EQ(start({{}, QStringLiteral("nobody")}), HandoverAnswer::NotFound);
    EXPECT_FALSE(start({QStringLiteral("/srv/other.mv"), {}}).has_value());
}

TEST_F(HandoverTest, WhatAKilledProgramLeftIsPassedBy) {
    ASSERT_TRUE(QDir().mkpath(sockets));
    const QByteArray stale = QFile::encodeName(sockets + QStringLiteral("/window-1"));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(static_cast<std::size_t>(stale.size()), sizeof address.sun_path);
    std::copy(stale.begin(), stale.end(), address.sun_path);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(descriptor);
    const CHandoverServer server(sockets, office());
    EXPECT_EQ(start({{}, {}}), HandoverAnswer::Shown);
    EXPECT_FALSE(QFile::exists(QFile::decodeName(stale)));
}

} // namespace
} // namespace mirovane
