#ifndef BSUTILS_FIHANDLER_H
#define BSUTILS_FIHANDLER_H

// FIHandler: what a parser reports a message to, callback by callback, as it reads it. A message
// is started, then either header elements or message content (elements inside it), then ended.
// Elements are named by a UTF-16 name or by a member id; `category` is the node category of the
// element (see FITreeIterator::getCategory: 0 self-defining field ... 6 pre-defined message), and
// worker information handles carry whatever the parser attaches to the message or the element.
// The order in which a parser may call these is the one BitstreamWorkerStateChecker enforces.

#include <bsutils/export.h>
#include <bsutils/pwfdata.h>
#include <bsutils/workerinfo.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <vector>

class BSUTILS_EXPORT FIHandler {
 public:
  FIHandler() = default;
  FIHandler(const FIHandler&) = default;
  FIHandler& operator=(const FIHandler&) = default;

  virtual void startMessage(WorkerInfoPtr start, WorkerInfoPtr end) = 0;
  virtual void endMessage(WorkerInfoPtr info) = 0;
  // Opens the message content, named; returns whether the handler takes it.
  virtual bool startMessageContent(const char16_t* name, std::uint16_t category,
                                   WorkerInfoPtr info) = 0;
  // Opens the message content by member id, which the handler may change; returns whether the
  // handler takes it. By default it declines: it lets go of `info` and returns false, leaving
  // `memberId` alone.
  virtual bool startMessageContent(std::int32_t& memberId, std::uint16_t category,
                                   WorkerInfoPtr info, std::int32_t flags);
  virtual void endMessageContent(const char16_t* name, WorkerInfoPtr info) = 0;
  virtual void endMessageContent(std::int32_t memberId, WorkerInfoPtr info) = 0;
  virtual void startElement(const char16_t* name, std::uint16_t category, WorkerInfoPtr info,
                            std::int32_t repeatIndex) = 0;
  virtual void startElement(std::int32_t memberId, std::uint16_t category, WorkerInfoPtr info,
                            std::int32_t repeatIndex, std::int32_t tagId) = 0;
  virtual void endElement(const char16_t* name, WorkerInfoPtr info) = 0;
  virtual void endElement(std::int32_t memberId, WorkerInfoPtr info) = 0;
  // The value of the element last started.
  virtual void data(const PWFData& value, WorkerInfoPtr info) = 0;
  virtual void projectId(const char16_t* id) = 0;
  virtual void projectDependencies(std::vector<ZanStringBase> dependencies) = 0;
  virtual ~FIHandler() = default;
};

#endif  // BSUTILS_FIHANDLER_H
