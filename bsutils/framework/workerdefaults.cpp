// The default bodies of the worker interfaces.

#include <bsutils/fihandler.h>
#include <bsutils/fiparser.h>

std::int32_t FIParser::getEndOfMessageOffset() {
  // A parser that cannot tell where its message ends parses the rest of it to find out.
  while (hasNext()) parseNext();
  return getNumBytesParsed();
}

bool FIHandler::startMessageContent(std::int32_t& /*memberId*/, std::uint16_t /*category*/,
                                    WorkerInfoPtr /*info*/, std::int32_t /*flags*/) {
  // A handler that does not take content by member id declines it; its handle goes with the call.
  return false;
}
