#ifndef BSUTILS_FIMESSAGETREE_H
#define BSUTILS_FIMESSAGETREE_H

// FIMessageTree: the message a writer is to write, as the runtime (or MemoryMessageTree) holds it:
// the project it belongs to, the worker information of the message's start and end, and iterators
// over its header, content and footer. A tree is a log source, so that its trace names it.

#include <bsutils/export.h>
#include <bsutils/fitreeiterator.h>
#include <bsutils/workerinfo.h>
#include <zan/zanlogsource.h>

#include <cstdint>

class BSUTILS_EXPORT FIMessageTree : public ZanOwnedLogSource {
 public:
  FIMessageTree() = default;
  FIMessageTree(const FIMessageTree&) = default;
  FIMessageTree& operator=(const FIMessageTree&) = default;
  ~FIMessageTree() override = default;

  // Trace names a tree "FIMessageTree" unless its owner says otherwise.
  ZanStringBase logType() const override;

  virtual const char16_t* getProjectId() const = 0;
  virtual std::int32_t getNumProjDependencies() const = 0;
  virtual const char16_t* getProjDependency(std::int32_t index) const = 0;
  virtual WorkerInfoPtr getMsgStartWorkerInfo() = 0;
  virtual WorkerInfoPtr getMsgEndWorkerInfo() = 0;
  // Each positioned on the first node of its part, or null when the part has none.
  virtual FITreeIterator getMsgHeaderIterator() const = 0;
  virtual FITreeIterator getMsgContentIterator() const = 0;
  virtual FITreeIterator getMsgFooterIterator() const = 0;

  // With trace on (filter 3 or more), writes the header, content and footer, every node of each
  // with traceSubTree; nothing otherwise.
  virtual void traceTree() const;
  // With trace on, writes the node at `node` and every node below it, depth first, one trace record
  // "Message tree node" a node under the function "FIMessageTree::traceSubTree", its inserts the
  // labelled values "TagId: 5", "MemberId: 0", "TagName: name", "RepeatIndex", "WhereDefined",
  // "LogicalType", "Data", "Category", "NodeType", "Occurrences", "PathBasedInfoIndex",
  // "MinOccurs", "MaxOccurs", "MinLength", "MaxLength", "IsNullable", "DefaultData",
  // "HasTreeChanged", "PartialMemberPath", "StartWorkerInfo", "DataWorkerInfo", "EndWorkerInfo",
  // in that order. `node` is back where it was when it returns.
  virtual void traceSubTree(FITreeIterator& node) const;
};

#endif  // BSUTILS_FIMESSAGETREE_H
