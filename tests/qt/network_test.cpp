// The window at a scanner behind a server in the network.
#include <gtest/gtest.h>
#include <sched.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <memory>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

const QString ser2net = "/usr/sbin/ser2net";

quint16 free_port() {
  QTcpServer probe;
  probe.listen(QHostAddress::LocalHost);
  return probe.serverPort();
}

/// A pilot whose COM 1 is the simulated scanner behind ser2net.
struct FarPilot : Pilot {
  explicit FarPilot(const QStringList& simulator_options) : Pilot(simulator_options) {
    const QString device = QFileInfo(folder() + "/com1").canonicalFilePath();
    lead_to(free_port());
    QFile file(folder() + "/ser2net.yaml");
    if (!file.open(QIODevice::WriteOnly)) throw std::runtime_error("can't write");
    file.write(QString("connection: &scanner\n  accepter: telnet(rfc2217),tcp,127.0.0.1,%1\n"
                       "  connector: serialdev,%2,9600n81,local\n")
                   .arg(port)
                   .arg(device)
                   .toLatin1());
    file.close();
    serve();
  }
  ~FarPilot() { stop(); }
  void serve() {
    server.start(ser2net, {"-n", "-d", "-c", folder() + "/ser2net.yaml"});
    QTcpSocket probe;
    const bool serves = wait_for([&] {
      if (probe.state() == QAbstractSocket::UnconnectedState)
        probe.connectToHost("127.0.0.1", port);
      return probe.state() == QAbstractSocket::ConnectedState;
    });
    if (!serves) throw std::runtime_error("ser2net doesn't start");
  }
  void stop() {
    server.kill();
    server.waitForFinished();
  }
  /// COM 1 becomes this port of the machine itself.
  void lead_to(quint16 new_port) {
    port = new_port;
    name = "rfc2217://127.0.0.1:" + QString::number(port);
    QFile::remove(folder() + "/com1");
    QFile::link(name, folder() + "/com1");
  }
  /// The tool tip of panel 1, whose lines are as long as a tool tip is wide.
  QString port_tip() const { return find("sbrStatus.Panels(1)")->toolTip().remove('\n'); }

  QProcess server;
  quint16 port = 0;
  QString name;
};

class Network : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!QFile::exists(ser2net)) GTEST_SKIP() << "there is no ser2net";
  }
};

TEST_F(Network, the_window_does_its_jobs_as_on_a_local_port) {
  FarPilot pilot({"--rate", "4800"});
  pilot.start();
  EXPECT_EQ(pilot.panel(1), "Settings: 4800,N,8,1  Com Port: 1");
  EXPECT_EQ(pilot.port_tip().toStdString(), pilot.name.toStdString());
  pilot.click("cmdReceive");
  EXPECT_EQ(pilot.panel(2), "");
  EXPECT_TRUE(pilot.text("labRevision(1)").startsWith(" 3.22"));
  pilot.click("Option12");
  pilot.click("cmdSend");
  EXPECT_EQ(pilot.panel(1), "Settings: 19200,n,8,1  Com Port: 1");
  pilot.click("cmdReceive");
  EXPECT_EQ(pilot.panel(2), "");
  EXPECT_TRUE(pilot.find<QRadioButton>("Option12")->isChecked());
  pilot.click("cmdFactory");
  EXPECT_EQ(pilot.panel(1), "Settings: 9600,N,8,1  Com Port: 1");
  EXPECT_EQ(pilot.panel(2), "");
  pilot.click("mnumanual");
  pilot.click("Command1", "Form4");
  EXPECT_EQ(pilot.panel(1), "Settings: 9600,N,8,1  Com Port: 1");
  EXPECT_EQ(pilot.port_tip().toStdString(), pilot.name.toStdString());

  pilot.click("mnuload(5)");
  pilot.load_image(Pilot::image("4.00", 40000));
  pilot.answer_next_box("OK");
  EXPECT_TRUE(
      Pilot::wait_for([&] { return pilot.text("labRevision(1)").startsWith(" 4.00"); }, 30000));
  EXPECT_TRUE(pilot.boxes().last().startsWith("Restart"));
  EXPECT_EQ(pilot.panel(1), "Settings: 9600,N,8,1  Com Port: 1");
}

TEST_F(Network, a_server_that_goes_closes_the_port_and_a_search_finds_it_again) {
  FarPilot pilot({"--rate", "19200"});
  pilot.start();
  pilot.stop();
  EXPECT_TRUE(Pilot::wait_for([&] { return !pilot.desktop().line.is_open(); }));
  EXPECT_EQ(pilot.port_tip().toStdString(),
            ("COM 1, " + pilot.name + ": the server closed the connection").toStdString());
  pilot.answer_next_box("OK");
  pilot.click("mnuauto");
  EXPECT_EQ(pilot.panel(1), "Settings: Closed");
  EXPECT_EQ(pilot.port_tip().toStdString(),
            ("COM 1, " + pilot.name + ": connection refused").toStdString());
  pilot.serve();
  pilot.click("mnuauto");
  EXPECT_EQ(pilot.panel(1), "Settings: 19200,N,8,1  Com Port: 1");
  EXPECT_EQ(pilot.port_tip().toStdString(), pilot.name.toStdString());
}

TEST_F(Network, the_windows_stay_alive_while_a_server_keeps_its_silence) {
  FarPilot pilot({"--rate", "9600"});
  pilot.start();
  QTcpServer silent;
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  const quint16 scanner = pilot.port;
  pilot.lead_to(silent.serverPort());
  QElapsedTimer since_turn;
  qint64 longest_ms = 0;
  QTimer turns;
  turns.callOnTimeout([&] { longest_ms = std::max<qint64>(longest_ms, since_turn.restart()); });
  pilot.answer_next_box("OK");
  QTimer::singleShot(1000, [&] {
    pilot.click("cmdReceive");  // does nothing in a search
  });
  QElapsedTimer clock;
  clock.start();
  since_turn.start();
  turns.start(1);
  pilot.click("mnuauto");
  turns.stop();
  EXPECT_GE(clock.elapsed(), 4000);
  EXPECT_LT(clock.elapsed(), 6000);
  EXPECT_LT(longest_ms, 500);
  EXPECT_EQ(pilot.boxes().size(), 1);
  EXPECT_EQ(pilot.port_tip().toStdString(),
            ("COM 1, " + pilot.name + ": no answer from the server").toStdString());
  pilot.lead_to(scanner);
  pilot.click("mnuauto");
  EXPECT_EQ(pilot.panel(1), "Settings: 9600,N,8,1  Com Port: 1");
}

TEST_F(Network, an_exit_does_not_wait_for_the_server) {
  FarPilot pilot({"--rate", "9600"});
  QTcpServer silent;
  ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
  pilot.lead_to(silent.serverPort());
  Desktop& desktop = pilot.desktop();
  QTimer::singleShot(300, [&] { desktop.windows.handle([&] { desktop.program.Form_Unload(); }); });
  QElapsedTimer clock;
  clock.start();
  pilot.start();
  EXPECT_LT(clock.elapsed(), 2000);
  EXPECT_TRUE(desktop.windows.ended());
  EXPECT_FALSE(desktop.line.is_open());
}

TEST_F(Network, a_server_that_vanishes_without_a_word_is_noticed_while_nothing_is_said) {
  // A network of this test's own, whose one device goes down.
  if (::unshare(CLONE_NEWNET) != 0) GTEST_SKIP() << "no network of its own without root";
  const auto ip = [](const QString& words) { return QProcess::execute("ip", words.split(' ')); };
  // Without an address of its own, ser2net takes the machine for one without a network.
  if (ip("link set lo up") != 0 || ip("address add 192.0.2.1/32 dev lo") != 0) {
    GTEST_SKIP() << "there is no ip";
  }
  FarPilot pilot({"--rate", "9600"});
  pilot.start();
  ASSERT_EQ(pilot.panel(1), "Settings: 9600,N,8,1  Com Port: 1");
  ASSERT_EQ(ip("link set lo down"), 0);
  QElapsedTimer clock;
  clock.start();
  EXPECT_TRUE(Pilot::wait_for([&] { return !pilot.desktop().line.is_open(); }, 40000));
  std::printf("noticed after %lld ms\n", clock.elapsed());
  EXPECT_LT(clock.elapsed(), 31000);
  EXPECT_EQ(pilot.port_tip().toStdString(),
            ("COM 1, " + pilot.name + ": no answer from the server").toStdString());
}

}  // namespace
}  // namespace orvex
