#ifndef BSUTILS_FITREEITERATOR_H
#define BSUTILS_FITREEITERATOR_H

// FITreeIterator: the cursor a writer reads a message tree with. It is a handle over an
// implementation object (FITreeIteratorImpl) that knows the tree; copies of a handle share that
// object, and so its position. A handle made with ownership deletes the object when the last copy
// goes; one made from a const pointer never does. A default handle is null and must not be moved or
// queried.
//
// Nodes are classified three ways: their category (the values below), where they are defined
// (EWhereDefined) and their node type (ENodeType), the last two derived from the category and the
// member id.

#include <bsutils/export.h>
#include <bsutils/pwfdata.h>
#include <bsutils/workerinfo.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <memory>
#include <vector>

// Node categories, as getCategory returns them.
enum ENodeCategory : std::int32_t {
  eSelfDefiningField = 0,
  ePreDefinedField = 1,
  eSelfDefiningStructure = 2,
  ePreDefinedStructure = 3,
  eUnparsedBuffer = 4,
  eSelfDefiningMessage = 5,
  ePreDefinedMessage = 6,
};

enum EWhereDefined : std::int32_t { eUnknown = -1, eTypeMember = 0, eTag = 1, eSelf = 2 };

enum ENodeType : std::int32_t { eMessage = 0, eCompound = 1, eSimple = 2, eUnparsedBufferNode = 3 };

// One step of a node's partial member path: three values whose meaning the tree gives them.
struct BSUTILS_EXPORT MbrPathItem {
  MbrPathItem(std::int32_t firstValue, std::int32_t secondValue, std::int32_t thirdValue)
      : first(firstValue), second(secondValue), third(thirdValue) {}
  bool operator==(const MbrPathItem&) const = default;

  std::int32_t first;
  std::int32_t second;
  std::int32_t third;
};

// What a tree implements for its iterators. Each move returns whether it happened (a node with no
// parent, child or sibling there stays where it is).
class BSUTILS_EXPORT FITreeIteratorImpl {
 public:
  virtual ~FITreeIteratorImpl() = default;

  virtual bool moveToParent() = 0;
  virtual bool moveToFirstChild() = 0;
  virtual bool moveToPreviousSibling() = 0;
  virtual bool moveToNextSibling() = 0;
  virtual std::int32_t getTagId() const = 0;
  virtual const char16_t* getTagName() const = 0;
  virtual ZanStringBase getNamespaceURI() const = 0;
  virtual std::int32_t getMemberId() const = 0;
  virtual std::vector<std::int32_t> getMemberIdPath() const = 0;
  virtual std::vector<MbrPathItem> getPartialMemberPath() const = 0;
  virtual std::int32_t getCategory() const = 0;
  virtual std::int32_t getRepeatIndex() const = 0;
  virtual std::int32_t getPathBasedInfoIndex() const = 0;
  virtual std::int32_t getMinOccurs() const = 0;
  virtual std::int32_t getMaxOccurs() const = 0;
  virtual std::int32_t getOccurrences() const = 0;
  virtual std::int32_t getMinLength() const = 0;
  virtual std::int32_t getMaxLength() const = 0;
  virtual std::int32_t getIsNullable() const = 0;
  virtual PWFData getData() const = 0;
  virtual PWFData getDefaultData() const = 0;
  virtual WorkerInfoPtr getStartWorkerInfo() const = 0;
  virtual WorkerInfoPtr getDataWorkerInfo() const = 0;
  virtual WorkerInfoPtr getEndWorkerInfo() const = 0;
  virtual bool hasTreeChanged() const = 0;
  virtual bool isAnonymous() const = 0;
};

class BSUTILS_EXPORT FITreeIterator {
 public:
  FITreeIterator() = default;
  // Over `impl`; with `owns`, the handle (and its copies) delete it when the last one goes.
  FITreeIterator(FITreeIteratorImpl* impl, bool owns);
  // Over `impl`, never deleting it.
  explicit FITreeIterator(const FITreeIteratorImpl* impl);

  bool isNull() const { return impl_ == nullptr; }
  // Handles are equal when they share one implementation object (or are both null).
  bool operator==(const FITreeIterator& other) const { return impl_ == other.impl_; }
  bool operator!=(const FITreeIterator& other) const { return impl_ != other.impl_; }

  bool moveToParent() { return impl_->moveToParent(); }
  bool moveToFirstChild() { return impl_->moveToFirstChild(); }
  bool moveToPreviousSibling() { return impl_->moveToPreviousSibling(); }
  bool moveToNextSibling() { return impl_->moveToNextSibling(); }
  std::int32_t getTagId() const { return impl_->getTagId(); }
  const char16_t* getTagName() const { return impl_->getTagName(); }
  ZanStringBase getNamespaceURI() const { return impl_->getNamespaceURI(); }
  std::int32_t getMemberId() const { return impl_->getMemberId(); }
  std::vector<std::int32_t> getMemberIdPath() const { return impl_->getMemberIdPath(); }
  std::vector<MbrPathItem> getPartialMemberPath() const { return impl_->getPartialMemberPath(); }
  std::int32_t getCategory() const { return impl_->getCategory(); }
  std::int32_t getRepeatIndex() const { return impl_->getRepeatIndex(); }
  std::int32_t getPathBasedInfoIndex() const { return impl_->getPathBasedInfoIndex(); }
  std::int32_t getMinOccurs() const { return impl_->getMinOccurs(); }
  std::int32_t getMaxOccurs() const { return impl_->getMaxOccurs(); }
  std::int32_t getOccurrences() const { return impl_->getOccurrences(); }
  std::int32_t getMinLength() const { return impl_->getMinLength(); }
  std::int32_t getMaxLength() const { return impl_->getMaxLength(); }
  std::int32_t getIsNullable() const { return impl_->getIsNullable(); }
  PWFData getData() const { return impl_->getData(); }
  PWFData getDefaultData() const { return impl_->getDefaultData(); }
  WorkerInfoPtr getStartWorkerInfo() const { return impl_->getStartWorkerInfo(); }
  WorkerInfoPtr getDataWorkerInfo() const { return impl_->getDataWorkerInfo(); }
  WorkerInfoPtr getEndWorkerInfo() const { return impl_->getEndWorkerInfo(); }
  bool hasTreeChanged() const { return impl_->hasTreeChanged(); }
  bool isAnonymous() const { return impl_->isAnonymous(); }

  // A member id above 0: eTypeMember; else the self-defining categories (0, 2, 5): eSelf; an
  // unparsed buffer (4): eUnknown; any other category: eTag.
  EWhereDefined getWhereDefined() const;
  // Categories 0 and 1: eSimple; 2 and 3: eCompound; 4: eUnparsedBufferNode; any other: eMessage.
  ENodeType getNodeType() const;

 private:
  std::shared_ptr<FITreeIteratorImpl> owned_;  // set only for an owning handle
  FITreeIteratorImpl* impl_ = nullptr;
};

#endif  // BSUTILS_FITREEITERATOR_H
