#ifndef ZAN_ZANEXCEPTION_H
#define ZAN_ZANEXCEPTION_H

// The runtime's exceptions. Each carries where it was raised (source module, line, function), the
// log source, a message number, a short trace text and the inserts streamed into it, rendered as
// UTF-8 in order. throwThis() throws the object as its most-derived class.

#include <zan/zaninsert.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

class ZanLogSource;

class ZanException : public std::exception {
 public:
  const std::string& sourceModule() const { return sourceModule_; }
  int line() const { return line_; }
  const std::string& function() const { return function_; }
  const std::string& logSource() const { return logSource_; }
  std::int32_t messageNumber() const { return messageNumber_; }
  const std::string& traceText() const { return traceText_; }
  const std::vector<std::string>& inserts() const { return inserts_; }

  // The class name as a user would read it, e.g. "ZanConversionException".
  virtual const char* className() const = 0;
  [[noreturn]] virtual void throwThis() const = 0;

  // One line: class, message number, trace text, inserts, function, module and line, log source.
  const char* what() const noexcept override;

  template <class Value>
  requires requires(const Value& value) { zanInsertText(value); }
  ZanException& operator<<(const Value& value) {
    inserts_.push_back(zanInsertText(value));
    whatText_.clear();
    return *this;
  }

 protected:
  ZanException(const char* sourceModule, int line, const char* function,
               const ZanStringBase& logSourceName, std::int32_t messageNumber,
               const char* traceText);
  ZanException(const ZanLogSource& logSource, const char* sourceModule, int line,
               const char* function, std::int32_t messageNumber, const char* traceText);

 private:
  std::string sourceModule_;
  int line_;
  std::string function_;
  std::string logSource_;
  std::int32_t messageNumber_;
  std::string traceText_;
  std::vector<std::string> inserts_;
  mutable std::string whatText_;  // built on the first what()
};

// Declares one concrete exception class: both constructors, className() and throwThis().
#define ZAN_DECLARE_EXCEPTION(Name)                                                               \
  class Name : public ZanException {                                                              \
   public:                                                                                        \
    Name(const char* sourceModule, int line, const char* function,                                \
         const ZanStringBase& logSourceName, std::int32_t messageNumber, const char* traceText)   \
        : ZanException(sourceModule, line, function, logSourceName, messageNumber, traceText) {}  \
    Name(const ZanLogSource& logSource, const char* sourceModule, int line, const char* function, \
         std::int32_t messageNumber, const char* traceText)                                       \
        : ZanException(logSource, sourceModule, line, function, messageNumber, traceText) {}      \
    const char* className() const override { return #Name; }                                      \
    [[noreturn]] void throwThis() const override { throw *this; }                                 \
  }

ZAN_DECLARE_EXCEPTION(ZanConversionException);
ZAN_DECLARE_EXCEPTION(ZanParserException);
ZAN_DECLARE_EXCEPTION(ZanRecoverableException);
ZAN_DECLARE_EXCEPTION(ZanFatalException);

#undef ZAN_DECLARE_EXCEPTION

#endif  // ZAN_ZANEXCEPTION_H
