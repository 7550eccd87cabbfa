#ifndef BSUTILS_TESTS_CAPTURING_SINK_H
#define BSUTILS_TESTS_CAPTURING_SINK_H

// Captures every trace record written while it lives, at the filter level it is given, and puts
// back the previous sink and filter when it goes.

#include <zan/zanlog.h>

#include <algorithm>
#include <string>
#include <vector>

class CapturingSink {
 public:
  explicit CapturingSink(int filter) : previousFilter_(ZanLog::iEffectiveLogFilter.load()) {
    previousSink_ =
        ZanLog::setSink([this](const ZanLog::Record& record) { records_.push_back(record); });
    ZanLog::iEffectiveLogFilter = filter;
  }
  CapturingSink(const CapturingSink&) = delete;
  CapturingSink& operator=(const CapturingSink&) = delete;
  ~CapturingSink() {
    ZanLog::iEffectiveLogFilter = previousFilter_;
    ZanLog::setSink(previousSink_);
  }

  const std::vector<ZanLog::Record>& records() const { return records_; }
  void clear() { records_.clear(); }

  std::vector<ZanLog::Record> ofKind(ZanLog::Kind kind) const {
    std::vector<ZanLog::Record> matching;
    std::copy_if(records_.begin(), records_.end(), std::back_inserter(matching),
                 [kind](const ZanLog::Record& record) { return record.kind == kind; });
    return matching;
  }

 private:
  int previousFilter_;
  ZanLog::Sink previousSink_;
  std::vector<ZanLog::Record> records_;
};

#endif  // BSUTILS_TESTS_CAPTURING_SINK_H
