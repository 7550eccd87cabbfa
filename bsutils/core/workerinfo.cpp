#include <bsutils/workerinfo.h>

const PWFData WorkerInfoNullData;

void CPRCObject::removeReference() {
  if (--references_ == 0) delete this;
}

const PWFData& WorkerInfo::getDataProperty(std::int32_t) const { return WorkerInfoNullData; }

std::int32_t WorkerInfo::getInt32Property(std::int32_t) const { return kNotSet; }

void WorkerInfo::setProperty(std::int32_t, const PWFData&) {}

void WorkerInfo::setProperty(std::int32_t, std::int32_t) {}

const PWFData& MapWorkerInfo::getDataProperty(std::int32_t id) const {
  const auto found = properties_.find(id);
  return found == properties_.end() ? WorkerInfoNullData : found->second;
}

std::int32_t MapWorkerInfo::getInt32Property(std::int32_t id) const {
  // Through the virtual slot, so that a record derived from this one answers from its own values.
  const PWFData& value = getDataProperty(id);
  if (value.isNull() || value.getDataLogicalType() != eInteger) return kNotSet;
  return value.getInt32Value();
}

void MapWorkerInfo::setProperty(std::int32_t id, const PWFData& value) {
  if (value.isNothing()) {
    properties_.erase(id);
  } else {
    properties_.insert_or_assign(id, value);
  }
}

void MapWorkerInfo::setProperty(std::int32_t id, std::int32_t value) {
  if (value == kNotSet) {
    properties_.erase(id);
  } else {
    properties_.insert_or_assign(id, PWFData(value, false));
  }
}

WorkerInfoPtr::WorkerInfoPtr(WorkerInfo* record) : record_(record) { init(); }

WorkerInfoPtr::WorkerInfoPtr(const WorkerInfoPtr& other) : record_(other.record_) { init(); }

WorkerInfoPtr& WorkerInfoPtr::operator=(const WorkerInfoPtr& other) {
  if (record_ != other.record_) {
    // Take the new reference before letting go of the old: `other` may live inside the record
    // that letting go deletes.
    WorkerInfo* const previous = record_;
    record_ = other.record_;
    init();
    if (previous != nullptr) previous->removeReference();
  }
  return *this;
}

WorkerInfoPtr::~WorkerInfoPtr() {
  if (record_ != nullptr) record_->removeReference();
}

void WorkerInfoPtr::init() {
  if (record_ != nullptr) record_->addReference();
}
