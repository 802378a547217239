#pragma once

#include "base/clock.h"
#include "transfer/zmodem_transfer.h"

namespace orvex {

/// A phase of a transfer: what it sends, and what it makes of the receiver's answers and of time.
class ZmodemPhase {
 public:
  virtual ~ZmodemPhase() = default;

  virtual void on_header(const ZmodemHeader& header, Time now) = 0;
  /// Something came that was a header once.
  virtual void on_damaged(Time) {}
  /// Five CAN in a row.
  virtual void on_cancelled(Time now);
  /// Adds to the wire what is to go out next; false if there is nothing at present.
  virtual bool produce(Time now) = 0;
  /// Bytes of the wire were handed over, `all` of them or not. They leave the machine at `left`.
  virtual void handed_over(Time left, bool all) = 0;
  /// When tick() is wanted.
  virtual Time wake() const = 0;
  virtual void tick(Time now) = 0;

 protected:
  explicit ZmodemPhase(ZmodemTransfer& transfer) : transfer_(transfer) {}
  /// What means the same in every phase in which a file is offered: ZSKIP, ZFERR, ZABORT, ZFIN and
  /// ZCAN end the transfer, ZCRC and ZCHALLENGE ask a favour. Others are passed over.
  void on_other_header(const ZmodemHeader& header, Time now);

  ZmodemTransfer& transfer_;
};

/// The clock of a phase that waits for one answer: it gives up some time after its first bytes have
/// left the machine, and sends again some time after the last ones have.
class ZmodemClock {
 public:
  ZmodemClock(Time now, Time limit, Time again_after)
      : limit_(limit), again_after_(again_after), give_up_(now + limit) {}

  void sent(Time left);
  /// The next repeat is due by `at`.
  void hurry(Time at) { again_ = at < again_ ? at : again_; }
  void give_up_by(Time at) { give_up_ = at < give_up_ ? at : give_up_; }
  Time give_up() const { return give_up_; }
  Time again() const { return again_; }

 private:
  const Time limit_;
  const Time again_after_;
  Time give_up_;
  Time again_ = Time::max();
  bool counting_ = false;
};

}  // namespace orvex
