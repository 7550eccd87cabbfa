// The message tree's own bodies: its log type and the trace of a tree, node by node.

#include <bsutils/fimessagetree.h>
#include <zan/zanlog.h>

#include <string>

namespace {

constexpr const char* kTraceSubTree = "FIMessageTree::traceSubTree";
constexpr const char* kInvalidName = "ERROR invalid";

const char* categoryName(std::int32_t category) {
  static constexpr const char* kNames[] = {"SELF_DEFINING_FIELD",     "PRE_DEFINED_FIELD",
                                           "SELF_DEFINING_STRUCTURE", "PRE_DEFINED_STRUCTURE",
                                           "UN_PARSED_BUFFER",        "SELF_DEFINING_MESSAGE",
                                           "PRE_DEFINED_MESSAGE"};
  return category >= 0 && category < 7 ? kNames[category] : kInvalidName;
}

const char* whereDefinedName(std::int32_t whereDefined) {
  static constexpr const char* kNames[] = {"Unknown", "TypeMember", "Tag", "Self"};
  return whereDefined >= -1 && whereDefined <= 2 ? kNames[whereDefined + 1] : kInvalidName;
}

const char* nodeTypeName(std::int32_t nodeType) {
  static constexpr const char* kNames[] = {"Message", "Compound", "Simple", "UnparsedBuffer"};
  return nodeType >= 0 && nodeType <= 3 ? kNames[nodeType] : kInvalidName;
}

// A value as its debug text: "NULL", "NOTHING", or its standard text form.
std::string valueText(const PWFData& value) {
  return value.getDebugString().getPWFStringValue().toUtf8();
}

std::string workerInfoText(const WorkerInfoPtr& info) { return info.isNull() ? "none" : "present"; }

std::string pathText(const std::vector<MbrPathItem>& path) {
  std::string text;
  for (const MbrPathItem& item : path) {
    if (!text.empty()) text += ' ';
    text += '(' + std::to_string(item.first) + ',' + std::to_string(item.second) + ',' +
            std::to_string(item.third) + ')';
  }
  return text;
}

template <class Value>
std::string labelled(const char* label, const Value& value) {
  return std::string(label) + ": " + zanInsertText(value);
}

}  // namespace

ZanStringBase FIMessageTree::logType() const {
  const ZanStringBase ownerType = ZanOwnedLogSource::logType();
  return ownerType.isEmpty() ? ZanStringBase(u"FIMessageTree") : ownerType;
}

void FIMessageTree::traceTree() const {
  if (!ZanLog::isTraceActive()) return;
  for (FITreeIterator part :
       {getMsgHeaderIterator(), getMsgContentIterator(), getMsgFooterIterator()}) {
    if (part.isNull()) continue;
    do {
      traceSubTree(part);
    } while (part.moveToNextSibling());
  }
}

void FIMessageTree::traceSubTree(FITreeIterator& node) const {
  if (!ZanLog::isTraceActive() || node.isNull()) return;
  const PWFData data = node.getData();
  const char16_t* tagName = node.getTagName();
  ZanLog::TraceItem item(*this, kTraceSubTree, "Message tree node");
  item << labelled("TagId", node.getTagId()) << labelled("MemberId", node.getMemberId())
       << labelled("TagName", tagName == nullptr ? std::string() : ZanStringBase(tagName).toUtf8())
       << labelled("RepeatIndex", node.getRepeatIndex())
       << labelled("WhereDefined", whereDefinedName(node.getWhereDefined()))
       << labelled("LogicalType", static_cast<std::int32_t>(data.getDataLogicalType()))
       << labelled("Data", valueText(data))
       << labelled("Category", categoryName(node.getCategory()))
       << labelled("NodeType", nodeTypeName(node.getNodeType()))
       << labelled("Occurrences", node.getOccurrences())
       << labelled("PathBasedInfoIndex", node.getPathBasedInfoIndex())
       << labelled("MinOccurs", node.getMinOccurs()) << labelled("MaxOccurs", node.getMaxOccurs())
       << labelled("MinLength", node.getMinLength()) << labelled("MaxLength", node.getMaxLength())
       << labelled("IsNullable", node.getIsNullable())
       << labelled("DefaultData", valueText(node.getDefaultData()))
       << labelled("HasTreeChanged", node.hasTreeChanged())
       << labelled("PartialMemberPath", pathText(node.getPartialMemberPath()))
       << labelled("StartWorkerInfo", workerInfoText(node.getStartWorkerInfo()))
       << labelled("DataWorkerInfo", workerInfoText(node.getDataWorkerInfo()))
       << labelled("EndWorkerInfo", workerInfoText(node.getEndWorkerInfo()));
  item.writeToFile();
  // Depth first; the cursor comes back up to the node it started on.
  if (node.moveToFirstChild()) {
    do {
      traceSubTree(node);
    } while (node.moveToNextSibling());
    node.moveToParent();
  }
}
