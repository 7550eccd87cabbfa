#ifndef BSUTILS_MEMORYMESSAGETREE_H
#define BSUTILS_MEMORYMESSAGETREE_H

// MemoryMessageTree: a message tree held in memory, so that parsers and writers can be run, tested
// and chained without the runtime. A tree has three parts (header, content and footer), each a
// list of nodes, and every node a list of children. MemoryTreeBuilder fills a tree from a parser's
// callbacks; code can also build one directly:
//
//   MemoryMessageTree tree;
//   MemoryTreeNode& record = tree.content().addChild({u"record", eSelfDefiningStructure});
//   record.addChild({u"name", eSelfDefiningField}).setValue(PWFData(u"apples", eString));
//
// A writer reads the tree through FIMessageTree: the part iterators walk the nodes, and answer the
// queries a tree without a wire format dictionary cannot know with "no constraint" (see
// MemoryMessageTree::getMsgHeaderIterator). Nothing here throws except MemoryTreeNode::child on an
// index out of range and allocation failures.

#include <bsutils/export.h>
#include <bsutils/fimessagetree.h>
#include <bsutils/fitreeiterator.h>
#include <bsutils/pwfdata.h>
#include <bsutils/workerinfo.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <memory>
#include <vector>

// One element of a message: known by a name or by a member id, with its category, repeat index,
// value, the worker information that came with its start, value and end, and its children. A node
// owns its children; a child stays at its address for as long as its parent lives, so references
// returned by addChild and child may be kept while the tree is built further.
class BSUTILS_EXPORT MemoryTreeNode {
 public:
  // An anonymous self-defining field: no name, no member id.
  MemoryTreeNode() = default;
  // Known by `name` (empty for an anonymous node), of `category` (an ENodeCategory value).
  MemoryTreeNode(ZanStringBase name, std::int32_t category, std::int32_t repeatIndex = 0);
  // Known by `memberId`, which names a member when above 0 (a node with 0 or less and no name is
  // anonymous), with the tag id its wire format gives it.
  MemoryTreeNode(std::int32_t memberId, std::int32_t category, std::int32_t repeatIndex = 0,
                 std::int32_t tagId = 0);
  // Children are owned: a node moves, it is not copied.
  MemoryTreeNode(const MemoryTreeNode&) = delete;
  MemoryTreeNode& operator=(const MemoryTreeNode&) = delete;
  MemoryTreeNode(MemoryTreeNode&&) = default;
  MemoryTreeNode& operator=(MemoryTreeNode&&) = default;
  ~MemoryTreeNode() = default;

  // The name; empty for a node known by member id.
  const ZanStringBase& name() const { return name_; }
  // The member id; 0 for a node known by name.
  std::int32_t memberId() const { return memberId_; }
  std::int32_t tagId() const { return tagId_; }
  std::int32_t category() const { return category_; }
  std::int32_t repeatIndex() const { return repeatIndex_; }
  // Neither a name nor a member id above 0.
  bool isAnonymous() const { return name_.isEmpty() && memberId_ <= 0; }

  // The value; nothing (PWFData()) until one is set, and for a compound node.
  const PWFData& value() const { return value_; }
  // Sets the value and the worker information that came with it (replacing both). Returns this
  // node, so that a value can be set on the node addChild returns.
  MemoryTreeNode& setValue(PWFData value, WorkerInfoPtr info = WorkerInfoPtr());

  const WorkerInfoPtr& startWorkerInfo() const { return startInfo_; }
  const WorkerInfoPtr& dataWorkerInfo() const { return dataInfo_; }
  const WorkerInfoPtr& endWorkerInfo() const { return endInfo_; }
  MemoryTreeNode& setStartWorkerInfo(WorkerInfoPtr info);
  MemoryTreeNode& setEndWorkerInfo(WorkerInfoPtr info);

  std::int32_t childCount() const { return static_cast<std::int32_t>(children_.size()); }
  // Child `index`, 0 first; std::out_of_range outside 0 to childCount() - 1.
  MemoryTreeNode& child(std::int32_t index);
  const MemoryTreeNode& child(std::int32_t index) const;
  // Appends `node` as the last child and returns it where it now lives.
  MemoryTreeNode& addChild(MemoryTreeNode node);

 private:
  ZanStringBase name_;
  std::int32_t memberId_ = 0;
  std::int32_t tagId_ = 0;
  std::int32_t category_ = eSelfDefiningField;
  std::int32_t repeatIndex_ = 0;
  PWFData value_;
  WorkerInfoPtr startInfo_;
  WorkerInfoPtr dataInfo_;
  WorkerInfoPtr endInfo_;
  // Each child on the heap, so that its address survives the list growing.
  std::vector<std::unique_ptr<MemoryTreeNode>> children_;
};

// A whole message: the project it belongs to, the worker information of its start and end, and its
// three parts. Each part is a node whose children are the part's nodes; the content's node also
// carries the message content's own name or member id, category and worker information (as
// MemoryTreeBuilder records them from startMessageContent and endMessageContent), the header's and
// footer's are anonymous. The part nodes themselves are not part of the walk: an iterator starts on
// a part's first child and cannot move up past it.
class BSUTILS_EXPORT MemoryMessageTree : public FIMessageTree {
 public:
  // No project, no worker information, three empty parts.
  MemoryMessageTree() = default;
  MemoryMessageTree(const MemoryMessageTree&) = delete;
  MemoryMessageTree& operator=(const MemoryMessageTree&) = delete;
  ~MemoryMessageTree() override = default;

  // The parts, to read or to add nodes to with addChild.
  MemoryTreeNode& header() { return header_; }
  const MemoryTreeNode& header() const { return header_; }
  MemoryTreeNode& content() { return content_; }
  const MemoryTreeNode& content() const { return content_; }
  MemoryTreeNode& footer() { return footer_; }
  const MemoryTreeNode& footer() const { return footer_; }

  void setProjectId(ZanStringBase id);
  void setProjectDependencies(std::vector<ZanStringBase> dependencies);
  void setMsgStartWorkerInfo(WorkerInfoPtr info);
  void setMsgEndWorkerInfo(WorkerInfoPtr info);

  // --- FIMessageTree ---
  // The project id, NUL-terminated; empty (not null) when none was set. Valid until it is set
  // again or the tree goes.
  const char16_t* getProjectId() const override;
  std::int32_t getNumProjDependencies() const override;
  // Dependency `index`, NUL-terminated; null outside 0 to getNumProjDependencies() - 1.
  const char16_t* getProjDependency(std::int32_t index) const override;
  WorkerInfoPtr getMsgStartWorkerInfo() override;
  WorkerInfoPtr getMsgEndWorkerInfo() override;
  // An owning iterator on the part's first node, or a null handle when the part is empty. It reads
  // the tree in place: the tree must outlive it, and nodes may be added meanwhile (none removed).
  // Its node is known by name and member id as built; the rest it answers as follows:
  //   getTagName: the name, NUL-terminated (empty for a node known by member id);
  //   getMemberIdPath: the member ids from the part's top node down to this one, one a level (0
  //     for a node known by name);
  //   getPartialMemberPath: the same levels, each as MbrPathItem(member id, repeat index, tag id);
  //   getOccurrences: how many nodes among this one and its siblings share its name and member id;
  //   isAnonymous: neither a name nor a member id above 0;
  // and what only a dictionary could say, as "no constraint": getNamespaceURI empty,
  // getPathBasedInfoIndex -1, getMinOccurs 0, getMaxOccurs -1, getMinLength 0, getMaxLength -1,
  // getIsNullable 1, getDefaultData nothing, hasTreeChanged false.
  FITreeIterator getMsgHeaderIterator() const override;
  FITreeIterator getMsgContentIterator() const override;
  FITreeIterator getMsgFooterIterator() const override;

 private:
  ZanStringBase projectId_;
  std::vector<ZanStringBase> dependencies_;
  WorkerInfoPtr startInfo_;
  WorkerInfoPtr endInfo_;
  MemoryTreeNode header_;
  MemoryTreeNode content_;
  MemoryTreeNode footer_;
};

#endif  // BSUTILS_MEMORYMESSAGETREE_H
