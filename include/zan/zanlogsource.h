#ifndef ZAN_ZANLOGSOURCE_H
#define ZAN_ZANLOGSOURCE_H

// Log sources name where trace and exceptions come from. A plain source reports the process-wide
// filters and the default log source; an owned source answers through its owner when it has one;
// a named source carries its own type, name and label.

#include <zan/zanlog.h>
#include <zan/zanstringbase.h>

#include <utility>

class ZanLogSource {
 public:
  virtual ~ZanLogSource() = default;

  virtual int traceFilter() const;
  virtual int userTraceFilter() const;
  virtual ZanStringBase logType() const;
  virtual ZanStringBase logName() const;
  virtual ZanStringBase logLabel() const;
  virtual bool isNamed() const;

  bool isTraceActive() const { return traceFilter() >= ZanLog::kTraceLevel; }
  bool isDebugTraceActive() const { return traceFilter() >= ZanLog::kDebugLevel; }
  bool isUserTraceActive() const { return userTraceFilter() >= ZanLog::kTraceLevel; }
  bool isUserDebugTraceActive() const { return userTraceFilter() >= ZanLog::kDebugLevel; }

  // Appends the source's name, and its label when it has one, to a record.
  void addLogInserts(ZanLog::Item& item) const;
};

class ZanOwnedLogSource : public ZanLogSource {
 public:
  explicit ZanOwnedLogSource(const ZanLogSource* owner = nullptr) : owner_(owner) {}

  const ZanLogSource* owner() const { return owner_; }
  void setOwner(const ZanLogSource* owner) { owner_ = owner; }

  int traceFilter() const override;
  int userTraceFilter() const override;
  ZanStringBase logType() const override;
  ZanStringBase logName() const override;
  ZanStringBase logLabel() const override;
  bool isNamed() const override;

 private:
  const ZanLogSource* owner_;  // not owned
};

class ZanNamedLogSource : public ZanLogSource {
 public:
  ZanNamedLogSource(ZanStringBase type, ZanStringBase name, ZanStringBase label = ZanStringBase())
      : type_(std::move(type)), name_(std::move(name)), label_(std::move(label)) {}

  ZanStringBase logType() const override { return type_; }
  ZanStringBase logName() const override { return name_; }
  ZanStringBase logLabel() const override { return label_; }
  bool isNamed() const override { return true; }

 private:
  ZanStringBase type_;
  ZanStringBase name_;
  ZanStringBase label_;
};

#endif  // ZAN_ZANLOGSOURCE_H
