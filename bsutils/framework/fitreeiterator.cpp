#include <bsutils/fitreeiterator.h>

FITreeIterator::FITreeIterator(FITreeIteratorImpl* impl, bool owns)
    : owned_(owns ? std::shared_ptr<FITreeIteratorImpl>(impl) : nullptr), impl_(impl) {}

FITreeIterator::FITreeIterator(const FITreeIteratorImpl* impl)
    // The handle moves the cursor, which is the implementation object's state, not the tree's.
    : impl_(const_cast<FITreeIteratorImpl*>(impl)) {}

EWhereDefined FITreeIterator::getWhereDefined() const {
  if (getMemberId() > 0) return eTypeMember;
  switch (getCategory()) {
    case eSelfDefiningField:
    case eSelfDefiningStructure:
    case eSelfDefiningMessage:
      return eSelf;
    case eUnparsedBuffer:
      return eUnknown;
    default:
      return eTag;
  }
}

ENodeType FITreeIterator::getNodeType() const {
  switch (getCategory()) {
    case eSelfDefiningField:
    case ePreDefinedField:
      return eSimple;
    case eSelfDefiningStructure:
    case ePreDefinedStructure:
      return eCompound;
    case eUnparsedBuffer:
      return eUnparsedBufferNode;
    default:
      return eMessage;
  }
}
