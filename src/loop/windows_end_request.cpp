#include <windows.h>

#include <QCoreApplication>
#include <QPointer>
#include <atomic>
#include <utility>

#include "loop/end_request.h"

namespace orvex {
namespace {

// The system calls its handler on a thread of its own, with nothing else to reach them by.
QPointer<QObject> waiting;
std::function<void()> act_once;
std::atomic<int> code_at_once{-1};

BOOL WINAPI tell(DWORD event) {
  if (const int code = code_at_once; code >= 0) ::ExitProcess(static_cast<UINT>(code));
  QMetaObject::invokeMethod(
      waiting, [] { std::exchange(act_once, [] {})(); }, Qt::QueuedConnection);
  // Once the handler of a closed console or of a logout returns, the process is taken down.
  constexpr DWORD most_ms = 5000;
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(most_ms);
  return TRUE;
}

}  // namespace

void on_end_request(QObject& context, std::function<void()> act) {
  waiting = &context;
  act_once = std::move(act);
  ::SetConsoleCtrlHandler(tell, TRUE);
  // A program with windows hears of a logout by its windows.
  QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &context,
                   [] { std::exchange(act_once, [] {})(); });
}

void end_at_once(int code) {
  code_at_once = code;
}

}  // namespace orvex
