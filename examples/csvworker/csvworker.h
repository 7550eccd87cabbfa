// CsvWorker: a bitstream worker for one fixed comma-separated layout, lines of
// "name,quantity,price". Parsing reports the lines as the message content, one "order" element a
// line holding one field element a column, typed by the layout; writing turns such a tree back into
// the same text. There is no quoting: a name cannot hold a comma or a line break.
#ifndef BSUTILS_EXAMPLES_CSVWORKER_H
#define BSUTILS_EXAMPLES_CSVWORKER_H

#include <bsutils/fihandler.h>
#include <bsutils/fimessagetree.h>
#include <bsutils/fiparser.h>
#include <bsutils/pwfexception.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

// The layout: every line's columns, in order, and the type of their values.
struct CsvColumn {
  const char16_t* name;
  ELogicalType type;  // eString, eInteger or eDecimal
};
inline constexpr CsvColumn kCsvColumns[] = {
    {u"name", eString}, {u"quantity", eInteger}, {u"price", eDecimal}};

class CsvWorker final : public BitstreamWorker {
 public:
  // --- the parser ---
  void initializeParse(std::int32_t /*options*/, MessageInfo* /*info*/) override {}
  void setFIHandler(FIHandler* handler) override { handler_ = handler; }
  FIHandler* getFIHandler() const override { return handler_; }

  // The whole text as one message; every result is the bytes parsed so far.
  std::int32_t parse(const BitstreamBuffer* buffer, std::int32_t* bytesParsed) override {
    parseFirst(buffer, bytesParsed, false);
    while (hasNext()) parseNext();
    if (bytesParsed != nullptr) *bytesParsed = getNumBytesParsed();
    return getNumBytesParsed();
  }
  // Starts the message and reports its first line; parseNext reports one line more each time.
  std::int32_t parseFirst(const BitstreamBuffer* buffer, std::int32_t* bytesParsed,
                          bool /*partial*/) override {
    std::int32_t length = 0;
    const void* bytes = buffer->getData(&length, 0);
    text_ = std::string_view(static_cast<const char*>(bytes), static_cast<std::size_t>(length));
    offset_ = 0;
    lines_ = 0;
    handler_->startMessage(WorkerInfoPtr(), WorkerInfoPtr());
    handler_->startMessageContent(u"orders", eSelfDefiningMessage, WorkerInfoPtr());
    messageOpen_ = true;
    parseNext();
    if (bytesParsed != nullptr) *bytesParsed = getNumBytesParsed();
    return getNumBytesParsed();
  }
  std::int32_t parseNext() override {
    if (hasNext()) parseLine();
    if (!hasNext() && messageOpen_) {
      // No endMessageContent: the call-order checker refuses it once content elements have been
      // reported, and the end of the message ends its content.
      handler_->endMessage(WorkerInfoPtr());
      messageOpen_ = false;
    }
    return getNumBytesParsed();
  }
  bool hasNext() const override { return offset_ < text_.size(); }
  std::int32_t getNumBytesParsed() const override { return static_cast<std::int32_t>(offset_); }

  // --- the writer ---
  void initializeWrite(MessageInfo* /*info*/, bool* complete) override {
    if (complete != nullptr) *complete = true;  // the tree is all it needs
  }
  void setFIMessageTree(const FIMessageTree* tree) override { tree_ = tree; }
  const FIMessageTree* getFIMessageTree() const override { return tree_; }
  // Appends one line an order of the content; FIWriteException for a tree of another layout.
  std::int32_t write(WritableBitstreamBuffer* buffer) override {
    std::string text;
    FITreeIterator order = tree_->getMsgContentIterator();  // null for empty content
    if (!order.isNull()) {
      do {
        text += lineOf(order);
      } while (order.moveToNextSibling());
    }
    buffer->append(text.data(), static_cast<std::int32_t>(text.size()));
    return static_cast<std::int32_t>(text.size());
  }

  // --- the worker ---
  const DictionaryInfo* getWireFormatDescriptor() const override { return descriptor_; }
  void setWireFormatDescriptor(const DictionaryInfo* descriptor) override {
    descriptor_ = descriptor;
  }
  void release() override { delete this; }

 private:
  ~CsvWorker() override = default;  // given up with release(), as the runtime does

  // Reads the line at offset_ and reports it as one order; FIParseException, before anything is
  // reported, when it does not fit the layout.
  void parseLine() {
    const std::size_t end = std::min(text_.find('\n', offset_), text_.size());
    std::string_view rest = text_.substr(offset_, end - offset_);
    ++lines_;
    std::vector<PWFData> values;
    for (const CsvColumn& column : kCsvColumns) {
      const std::size_t comma = std::min(rest.find(','), rest.size());
      const bool lastColumn = &column == std::end(kCsvColumns) - 1;
      if ((comma == rest.size()) != lastColumn) fail("not 3 fields");
      values.push_back(valueOf(rest.substr(0, comma), column));
      rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    handler_->startElement(u"order", eSelfDefiningStructure, WorkerInfoPtr(), lines_ - 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
      handler_->startElement(kCsvColumns[i].name, eSelfDefiningField, WorkerInfoPtr(), 0);
      handler_->data(values[i], WorkerInfoPtr());
      handler_->endElement(kCsvColumns[i].name, WorkerInfoPtr());
    }
    handler_->endElement(u"order", WorkerInfoPtr());
    offset_ = std::min(end + 1, text_.size());
  }

  PWFData valueOf(std::string_view field, const CsvColumn& column) const {
    const std::string quoted =
        ZanStringBase(column.name).toUtf8() + " \"" + std::string(field) + '"';
    if (column.type == eString) return PWFData(ZanStringBase::fromUtf8(field));
    if (column.type == eInteger) {
      std::int64_t value = 0;
      const auto [stop, error] = std::from_chars(field.data(), field.data() + field.size(), value);
      if (error != std::errc() || stop != field.data() + field.size()) {
        fail(quoted + " is not an integer");
      }
      return PWFData(value);
    }
    // A decimal stays text, digits with at most one point, so that it is written back as read.
    const std::string_view digits = field.substr(field.starts_with('-') ? 1 : 0);
    const std::size_t point = digits.find('.');
    if (digits.empty() || digits == "." || digits.find_first_not_of("0123456789.") != digits.npos ||
        (point != digits.npos && digits.find('.', point + 1) != digits.npos)) {
      fail(quoted + " is not a decimal");
    }
    return PWFData(ZanStringBase::fromUtf8(field).terminatedData(), eDecimal);
  }

  [[noreturn]] void fail(const std::string& reason) const {
    throw FIParseException(("line " + std::to_string(lines_) + ": " + reason).c_str());
  }

  // One order as a line; `order` is back on the order when it returns.
  static std::string lineOf(FITreeIterator& order) {
    std::string line;
    bool onField = order.moveToFirstChild();
    for (const CsvColumn& column : kCsvColumns) {
      if (!onField || ZanStringBase(order.getTagName()) != ZanStringBase(column.name)) {
        throw FIWriteException("an order's fields are not name, quantity, price");
      }
      const PWFData value = order.getData();
      if (value.getDataLogicalType() != column.type || value.isNull()) {
        throw FIWriteException("a field's value is not of its column's type");
      }
      if (&column != kCsvColumns) line += ',';
      if (column.type == eString) line += value.getPWFStringValue().toUtf8();
      if (column.type == eInteger) line += std::to_string(value.getInt64Value());
      if (column.type == eDecimal) line += value.getDecimalText().toUtf8();
      onField = order.moveToNextSibling();
    }
    if (onField) throw FIWriteException("an order has more fields than the layout");
    order.moveToParent();
    return line + '\n';
  }

  FIHandler* handler_ = nullptr;
  const FIMessageTree* tree_ = nullptr;
  const DictionaryInfo* descriptor_ = nullptr;
  std::string_view text_;  // the buffer being parsed, which the caller keeps
  std::size_t offset_ = 0;
  std::int32_t lines_ = 0;
  bool messageOpen_ = false;
};

#endif  // BSUTILS_EXAMPLES_CSVWORKER_H
