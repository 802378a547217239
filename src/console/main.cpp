#include <QCoreApplication>

#include "console/run.h"
#include "platform/process.h"

int main(int argc, char* argv[]) {
  orvex::platform::prepare_streams();
  const QCoreApplication application(argc, argv);
  return orvex::run_program(orvex::platform::arguments(argc, argv));
}
