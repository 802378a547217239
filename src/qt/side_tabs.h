#pragma once

#include <QTabBar>
#include <QTabWidget>

namespace orvex {

/// A tab control whose tabs stand one below the other at the left, with their captions upright.
class SideTabs final : public QTabWidget {
 public:
  SideTabs();
};

}  // namespace orvex
