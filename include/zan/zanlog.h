#ifndef ZAN_ZANLOG_H
#define ZAN_ZANLOG_H

// Trace and log of the runtime's shared services. Every record becomes one structured Record handed
// to one process-wide sink; the default sink writes a readable line to stderr. Records are gated by
// the effective filter here as well as by the callers: trace, entry and exit records need 3 or
// more, debug records 4 or more; warnings and errors are always written.

#include <zan/zaninsert.h>
#include <zan/zanstringbase.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class ZanLogSource;

class ZanLog {
 public:
  static constexpr int kTraceLevel = 3;
  static constexpr int kDebugLevel = 4;

  // Process-wide filter levels, read before every record without locking.
  static std::atomic<int> iEffectiveLogFilter;
  static std::atomic<int> iEffectiveUserLogFilter;
  // Names the log source of records and exceptions built without a log source object. Set it
  // before other threads trace; it is not synchronised.
  static ZanStringBase iDefaultLogSource;

  enum class Kind { trace, entry, exit, debugEntry, debugExit, debugTrace, warning, error };

  struct Record {
    Kind kind = Kind::trace;
    std::string logSource;
    std::string function;
    std::string text;
    std::string file;
    int line = 0;
    std::int32_t messageNumber = 0;
    std::vector<std::string> inserts;
  };

  using Sink = std::function<void(const Record&)>;

  // Installs `sink` (an empty one restores the stderr sink) and returns the previous sink. A sink
  // may be called from any thread that traces, and may itself trace.
  static Sink setSink(Sink sink);
  static void writeRecord(const Record& record);
  static const char* kindName(Kind kind);

  static bool isTraceActive() {
    return iEffectiveLogFilter.load(std::memory_order_relaxed) >= kTraceLevel;
  }
  static bool isDebugTraceActive() {
    return iEffectiveLogFilter.load(std::memory_order_relaxed) >= kDebugLevel;
  }
  // Whether a record of this kind would be written at the current filter.
  static bool isKindActive(Kind kind);

  static void writeEntry(const char* function);
  static void writeEntry(const ZanLogSource& source, const char* function);
  static void writeExit(const char* function);
  static void writeExit(const ZanLogSource& source, const char* function);
  static void writeDebugEntry(const char* function);
  static void writeDebugEntry(const ZanLogSource& source, const char* function);
  static void writeDebugExit(const char* function);
  static void writeDebugExit(const ZanLogSource& source, const char* function);

  // A record under construction; values are appended as inserts.
  class Item {
   public:
    template <class Value>
    requires requires(const Value& value) { zanInsertText(value); }
    Item& operator<<(const Value& value) {
      record_.inserts.push_back(zanInsertText(value));
      return *this;
    }
    // A nested item becomes one insert: its text followed by its own inserts.
    Item& operator<<(const Item& nested);
    const Record& record() const { return record_; }

   protected:
    Item(Kind kind, std::string logSource, const char* function, const char* text);
    Record record_;
  };

  class TraceItem : public Item {
   public:
    TraceItem(const char* function, const char* text);
    TraceItem(const ZanLogSource& source, const char* function, const char* text);
    void writeToFile() const { writeRecord(record_); }
  };

  // An error for the event log.
  class ErrorItem : public Item {
   public:
    ErrorItem(const char* file, int line, const char* function, const ZanStringBase& sourceName,
              std::int32_t messageNumber, const char* text);
    void write() const { writeRecord(record_); }
  };

  class WarningItem : public Item {
   public:
    WarningItem(const ZanLogSource& source, const char* file, int line, const char* function,
                std::int32_t messageNumber, const char* text);
    void write() const { writeRecord(record_); }
  };

  // Cheap records for frequent debug trace: nothing is built unless the item is enabled and its
  // level is active; the record is written when the item is destroyed.
  class FastItem {
   public:
    struct EndMarker {};
    static constexpr EndMarker MagicInsert{};

    FastItem(const FastItem&) = delete;
    FastItem& operator=(const FastItem&) = delete;
    ~FastItem();

    template <class Value>
    requires requires(const Value& value) { zanInsertText(value); }
    FastItem& operator<<(const Value& value) {
      if (active_) record_.inserts.push_back(zanInsertText(value));
      return *this;
    }
    FastItem& operator<<(EndMarker) { return *this; }
    bool isActive() const { return active_; }

   protected:
    FastItem(Kind kind, const char* function, const char* label, bool enabled);

   private:
    bool active_;
    Record record_;
  };

  template <Kind kind>
  class FastItemOf : public FastItem {
   public:
    explicit FastItemOf(const char* function, const char* label = nullptr, bool enabled = true)
        : FastItem(kind, function, label, enabled) {}
  };
  using FastDebugEntryItem = FastItemOf<Kind::debugEntry>;
  using FastDebugExitItem = FastItemOf<Kind::debugExit>;
  using FastDebugTraceItem = FastItemOf<Kind::debugTrace>;
  using FastEntryItem = FastItemOf<Kind::entry>;
  using FastTraceItem = FastItemOf<Kind::trace>;
};

#endif  // ZAN_ZANLOG_H
