#include <zan/zanlog.h>
#include <zan/zanlogsource.h>

#include <iostream>
#include <memory>
#include <mutex>
#include <sstream>
#include <utility>

std::atomic<int> ZanLog::iEffectiveLogFilter{0};
std::atomic<int> ZanLog::iEffectiveUserLogFilter{0};
ZanStringBase ZanLog::iDefaultLogSource{u"bsutils"};

namespace {

void writeToStderr(const ZanLog::Record& record) {
  std::ostringstream line;
  line << "[" << ZanLog::kindName(record.kind) << "] " << record.logSource << " " << record.function
       << ": " << record.text;
  if (!record.file.empty()) line << " (" << record.file << ":" << record.line << ")";
  if (record.messageNumber != 0) {
    line << " message 0x" << std::hex << std::uppercase
         << static_cast<std::uint32_t>(record.messageNumber) << std::dec;
  }
  for (const std::string& insert : record.inserts) line << " | " << insert;
  line << '\n';
  std::cerr << line.str();
}

// The sink is swapped under the mutex but called outside it, so that a sink may trace too.
std::mutex sinkMutex;
std::shared_ptr<const ZanLog::Sink> currentSink =
    std::make_shared<const ZanLog::Sink>(writeToStderr);

std::shared_ptr<const ZanLog::Sink> loadSink() {
  std::lock_guard lock(sinkMutex);
  return currentSink;
}

std::string defaultLogSourceName() { return ZanLog::iDefaultLogSource.toUtf8(); }

void writeSimple(ZanLog::Kind kind, std::string logSource, const char* function) {
  if (!ZanLog::isKindActive(kind)) return;
  ZanLog::Record record;
  record.kind = kind;
  record.logSource = std::move(logSource);
  record.function = zanInsertText(function);
  ZanLog::writeRecord(record);
}

}  // namespace

ZanLog::Sink ZanLog::setSink(Sink sink) {
  auto next = std::make_shared<const Sink>(sink ? std::move(sink) : Sink(writeToStderr));
  std::lock_guard lock(sinkMutex);
  Sink previous = *currentSink;
  currentSink = std::move(next);
  return previous;
}

void ZanLog::writeRecord(const Record& record) {
  if (!isKindActive(record.kind)) return;
  const std::shared_ptr<const Sink> sink = loadSink();
  (*sink)(record);
}

bool ZanLog::isKindActive(Kind kind) {
  switch (kind) {
    case Kind::warning:
    case Kind::error:
      return true;
    case Kind::debugEntry:
    case Kind::debugExit:
    case Kind::debugTrace:
      return isDebugTraceActive();
    case Kind::trace:
    case Kind::entry:
    case Kind::exit:
      break;
  }
  return isTraceActive();
}

const char* ZanLog::kindName(Kind kind) {
  switch (kind) {
    case Kind::trace:
      return "trace";
    case Kind::entry:
      return "entry";
    case Kind::exit:
      return "exit";
    case Kind::debugEntry:
      return "debug entry";
    case Kind::debugExit:
      return "debug exit";
    case Kind::debugTrace:
      return "debug trace";
    case Kind::warning:
      return "warning";
    case Kind::error:
      return "error";
  }
  return "record";
}

void ZanLog::writeEntry(const char* function) {
  writeSimple(Kind::entry, defaultLogSourceName(), function);
}
void ZanLog::writeEntry(const ZanLogSource& source, const char* function) {
  writeSimple(Kind::entry, source.logName().toUtf8(), function);
}
void ZanLog::writeExit(const char* function) {
  writeSimple(Kind::exit, defaultLogSourceName(), function);
}
void ZanLog::writeExit(const ZanLogSource& source, const char* function) {
  writeSimple(Kind::exit, source.logName().toUtf8(), function);
}
void ZanLog::writeDebugEntry(const char* function) {
  writeSimple(Kind::debugEntry, defaultLogSourceName(), function);
}
void ZanLog::writeDebugEntry(const ZanLogSource& source, const char* function) {
  writeSimple(Kind::debugEntry, source.logName().toUtf8(), function);
}
void ZanLog::writeDebugExit(const char* function) {
  writeSimple(Kind::debugExit, defaultLogSourceName(), function);
}
void ZanLog::writeDebugExit(const ZanLogSource& source, const char* function) {
  writeSimple(Kind::debugExit, source.logName().toUtf8(), function);
}

ZanLog::Item::Item(Kind kind, std::string logSource, const char* function, const char* text) {
  record_.kind = kind;
  record_.logSource = std::move(logSource);
  record_.function = zanInsertText(function);
  if (text != nullptr) record_.text = text;
}

ZanLog::Item& ZanLog::Item::operator<<(const Item& nested) {
  std::string rendered = nested.record_.text;
  for (const std::string& insert : nested.record_.inserts) {
    if (!rendered.empty()) rendered += ", ";
    rendered += insert;
  }
  record_.inserts.push_back(std::move(rendered));
  return *this;
}

ZanLog::TraceItem::TraceItem(const char* function, const char* text)
    : Item(Kind::trace, defaultLogSourceName(), function, text) {}

ZanLog::TraceItem::TraceItem(const ZanLogSource& source, const char* function, const char* text)
    : Item(Kind::trace, source.logName().toUtf8(), function, text) {}

ZanLog::ErrorItem::ErrorItem(const char* file, int line, const char* function,
                             const ZanStringBase& sourceName, std::int32_t messageNumber,
                             const char* text)
    : Item(Kind::error, sourceName.toUtf8(), function, text) {
  record_.file = zanInsertText(file);
  record_.line = line;
  record_.messageNumber = messageNumber;
}

ZanLog::WarningItem::WarningItem(const ZanLogSource& source, const char* file, int line,
                                 const char* function, std::int32_t messageNumber, const char* text)
    : Item(Kind::warning, source.logName().toUtf8(), function, text) {
  record_.file = zanInsertText(file);
  record_.line = line;
  record_.messageNumber = messageNumber;
}

ZanLog::FastItem::FastItem(Kind kind, const char* function, const char* label, bool enabled)
    : active_(enabled && isKindActive(kind)) {
  if (!active_) return;
  record_.kind = kind;
  record_.logSource = defaultLogSourceName();
  record_.function = zanInsertText(function);
  if (label != nullptr) record_.text = label;
}

ZanLog::FastItem::~FastItem() {
  if (active_) writeRecord(record_);
}
