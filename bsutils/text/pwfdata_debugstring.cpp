// The debug text of a typed value is its standard text form, so it is written by the converter's
// text conversions; the rest of the typed value needs none of them.

#include <bsutils/dataconv.h>
#include <bsutils/pwfdata.h>

PWFData PWFData::getDebugString() const {
  // Built once and shared: each copy is a reference to the same text.
  static const PWFData kInvalid(ZanStringBase::fromLiteral(u"INVALID"));
  static const PWFData kNull(ZanStringBase::fromLiteral(u"NULL"));
  static const PWFData kNothing(ZanStringBase::fromLiteral(u"NOTHING"));
  if (isNothing()) return kNothing;
  if (isNull()) return kNull;
  try {
    return DataCnv().StandardStrFromData(*this);
  } catch (...) {
    // A diagnostic must not fail the caller it describes.
    return kInvalid;
  }
}
