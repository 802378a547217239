#pragma once

namespace orvex {

/// Sets a flag for as long as it lives.
class While {
 public:
  explicit While(bool& flag) : flag_(flag) { flag_ = true; }
  ~While() { flag_ = false; }
  While(const While&) = delete;
  While& operator=(const While&) = delete;

 private:
  bool& flag_;
};

}  // namespace orvex
