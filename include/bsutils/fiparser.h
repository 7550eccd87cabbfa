#ifndef BSUTILS_FIPARSER_H
#define BSUTILS_FIPARSER_H

// The worker interfaces that the runtime drives: FIParser turns a byte buffer into handler
// callbacks, FIWriter turns a message tree into bytes, and BitstreamWorker is both, with the wire
// format description both work from. A worker is given up with release(), never deleted through
// these interfaces: their destructors are protected. The order in which they may be called is the
// one BitstreamWorkerStateChecker enforces.

#include <bsutils/bitstreambuffer.h>
#include <bsutils/export.h>

#include <cstdint>

class DictionaryInfo;  // a wire format's description, the runtime's own
class FIHandler;
class FIMessageTree;
class MessageInfo;

class BSUTILS_EXPORT FIParser {
 public:
  FIParser() = default;
  FIParser(const FIParser&) = default;
  FIParser& operator=(const FIParser&) = default;

  virtual void initializeParse(std::int32_t options, MessageInfo* info) = 0;
  virtual void setFIHandler(FIHandler* handler) = 0;
  virtual FIHandler* getFIHandler() const = 0;
  // Parses a whole message from `buffer`, reporting it to the handler; `*bytesParsed` and the
  // result are the bytes it took.
  virtual std::int32_t parse(const BitstreamBuffer* buffer, std::int32_t* bytesParsed) = 0;
  // Parses the first part of a message (its first record, say); parseNext the next while hasNext.
  virtual std::int32_t parseFirst(const BitstreamBuffer* buffer, std::int32_t* bytesParsed,
                                  bool partial) = 0;
  virtual std::int32_t parseNext() = 0;
  virtual bool hasNext() const = 0;
  virtual std::int32_t getNumBytesParsed() const = 0;
  // Where the message ends. By default: parseNext while hasNext, then getNumBytesParsed.
  virtual std::int32_t getEndOfMessageOffset();

 protected:
  virtual ~FIParser() = default;
};

class BSUTILS_EXPORT FIWriter {
 public:
  FIWriter() = default;
  FIWriter(const FIWriter&) = default;
  FIWriter& operator=(const FIWriter&) = default;

  // Prepares a write of the message `info` describes; `*complete` says whether the writer needs
  // nothing more than the tree to write it.
  virtual void initializeWrite(MessageInfo* info, bool* complete) = 0;
  virtual void setFIMessageTree(const FIMessageTree* tree) = 0;
  virtual const FIMessageTree* getFIMessageTree() const = 0;
  // Appends the message to `buffer`; returns the bytes written.
  virtual std::int32_t write(WritableBitstreamBuffer* buffer) = 0;

 protected:
  virtual ~FIWriter() = default;
};

class BSUTILS_EXPORT BitstreamWorker : public FIParser, public FIWriter {
 public:
  BitstreamWorker() = default;
  BitstreamWorker(const BitstreamWorker&) = default;
  BitstreamWorker& operator=(const BitstreamWorker&) = default;

  virtual const DictionaryInfo* getWireFormatDescriptor() const = 0;
  virtual void setWireFormatDescriptor(const DictionaryInfo* descriptor) = 0;
  // The worker disposes of itself.
  virtual void release() = 0;

 protected:
  ~BitstreamWorker() override = default;
};

#endif  // BSUTILS_FIPARSER_H
