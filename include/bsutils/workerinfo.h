#ifndef BSUTILS_WORKERINFO_H
#define BSUTILS_WORKERINFO_H

// Worker information: the small property records that parsers and writers attach to messages and
// elements, keyed by a 32-bit property id, and the reference-counting handle they travel in. A
// record and every handle to it belong to one thread at a time: the count is a plain integer.
//
// Nothing here raises a failure of its own; MapWorkerInfo::getInt32Property passes on the overflow
// failure of PWFData::getInt32Value.

#include <bsutils/export.h>
#include <bsutils/pwfdata.h>

#include <cstdint>
#include <map>

// The answer of the value queries for a property that is not set: a nothing value (eNothing, not
// null). It lives as long as the library is loaded.
BSUTILS_EXPORT extern const PWFData WorkerInfoNullData;

// A base for objects that delete themselves when the last reference goes. The count starts at 0;
// whoever hands the object out takes the first reference.
class BSUTILS_EXPORT CPRCObject {
 public:
  CPRCObject() = default;
  // A copy is a new object: it starts with no references, whatever the original had.
  CPRCObject(const CPRCObject&) noexcept {}
  // The count belongs to the object, not to its value: assignment leaves it alone.
  CPRCObject& operator=(const CPRCObject&) noexcept { return *this; }
  virtual ~CPRCObject() = default;

  void addReference() { ++references_; }
  // Drops one reference and deletes the object (through its virtual destructor) when that was the
  // last. The object must have been created with new.
  void removeReference();

 private:
  std::int32_t references_ = 0;
};

// The empty record: holds nothing, stores nothing, and answers every query with "not set".
class BSUTILS_EXPORT WorkerInfo : public CPRCObject {
 public:
  // The value answer for "not set".
  static constexpr std::int32_t kNotSet = INT32_MIN;

  // WorkerInfoNullData, for every id.
  virtual const PWFData& getDataProperty(std::int32_t id) const;
  // kNotSet, for every id.
  virtual std::int32_t getInt32Property(std::int32_t id) const;
  // Ignored.
  virtual void setProperty(std::int32_t id, const PWFData& value);
  // Ignored.
  virtual void setProperty(std::int32_t id, std::int32_t value);
};

// A record that keeps its properties in a map from id to value. Copies copy the map.
class BSUTILS_EXPORT MapWorkerInfo : public WorkerInfo {
 public:
  // The stored value for `id`, or WorkerInfoNullData. The reference is valid until the property is
  // next set or removed.
  const PWFData& getDataProperty(std::int32_t id) const override;
  // The value of getDataProperty(id) (as overridden) when it is a non-null eInteger; kNotSet for
  // nothing, a null, or any other type. An 8-byte value outside the 32-bit range raises the
  // overflow failure of PWFData::getInt32Value (ZanConversionException 0xC0001583).
  std::int32_t getInt32Property(std::int32_t id) const override;
  // A nothing `value` removes the property; any other, a typed null included, is stored for `id`,
  // replacing an earlier value.
  void setProperty(std::int32_t id, const PWFData& value) override;
  // kNotSet removes the property; any other value is stored as a 4-byte eInteger.
  void setProperty(std::int32_t id, std::int32_t value) override;

 private:
  std::map<std::int32_t, PWFData> properties_;
};

// A handle that holds one reference to a record, or nothing. Copies share the record; the last
// handle to let go deletes it.
class BSUTILS_EXPORT WorkerInfoPtr {
 public:
  WorkerInfoPtr() = default;
  // Holds `record` (which must have been created with new) and takes a reference to it; a null
  // `record` gives a null handle. Implicit, so that `WorkerInfoPtr info = new MapWorkerInfo;` reads
  // as the runtime's callers have always written it.
  WorkerInfoPtr(WorkerInfo* record);  // NOLINT(google-explicit-constructor)
  WorkerInfoPtr(const WorkerInfoPtr& other);
  // Holds other's record, taking a reference, and lets go of its own; nothing happens when both
  // hold the same record (or both are null).
  WorkerInfoPtr& operator=(const WorkerInfoPtr& other);
  ~WorkerInfoPtr();

  // The held record; the handle must not be null.
  WorkerInfo* operator->() const { return record_; }
  WorkerInfo& operator*() const { return *record_; }

  bool isNull() const { return record_ == nullptr; }
  bool operator!() const { return isNull(); }

  // Takes a reference to the held record, if any, for a handle whose pointer was put in place
  // without one.
  void init();

 private:
  WorkerInfo* record_ = nullptr;
};

#endif  // BSUTILS_WORKERINFO_H
