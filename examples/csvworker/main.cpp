// A parser and writer run without the runtime: CsvWorker parses a text into a MemoryTreeBuilder,
// then writes the tree it built back, each time behind the call-order checker as the runtime would
// drive it. The text written must be the text parsed.
#include <bsutils/bitstreamworkerstatechecker.h>
#include <bsutils/bytebuffer.h>
#include <bsutils/memorytreebuilder.h>
#include <bsutils/messageinfo.h>

#include <iostream>
#include <memory>
#include <string>

#include "csvworker.h"

namespace {

const char* typeName(ELogicalType type) {
  return type == eString ? "string" : type == eInteger ? "integer" : "decimal";
}

}  // namespace

int main() {
  const std::string text = "apples,12,0.45\npears,7,1.20\nplums,150,-0.05\n";
  MessageInfo info;

  // Parse: the checker stands between the worker and the handler and checks every call.
  auto* parser = new BitstreamWorkerStateChecker(new CsvWorker);
  MemoryTreeBuilder builder;
  parser->initializeParse(0, &info);
  parser->setFIHandler(&builder);
  const ReadOnlyByteBuffer input(text.data(), static_cast<std::int32_t>(text.size()));
  std::int32_t parsed = 0;
  parser->parse(&input, &parsed);
  parser->release();  // releases the worker, then deletes the checker
  const std::unique_ptr<MemoryMessageTree> tree = builder.take();

  std::cout << "parsed " << parsed << " bytes into " << tree->content().childCount()
            << " orders (values in their standard text form):\n";
  for (std::int32_t i = 0; i < tree->content().childCount(); ++i) {
    const MemoryTreeNode& order = tree->content().child(i);
    std::cout << "  " << order.name().toUtf8() << ' ' << order.repeatIndex() << ':';
    for (std::int32_t j = 0; j < order.childCount(); ++j) {
      const PWFData& value = order.child(j).value();
      std::cout << ' ' << order.child(j).name().toUtf8() << '='
                << value.getDebugString().getPWFStringValue().toUtf8() << " ("
                << typeName(value.getDataLogicalType()) << ')';
    }
    std::cout << '\n';
  }

  // Write: a second worker behind a second checker, reading the tree through it.
  auto* writer = new BitstreamWorkerStateChecker(new CsvWorker);
  bool complete = false;
  writer->initializeWrite(&info, &complete);
  writer->setFIMessageTree(tree.get());
  ReadWriteByteBuffer output;
  writer->write(&output);
  writer->release();

  const std::string written(static_cast<const char*>(output.getData(0)),
                            static_cast<std::size_t>(output.getLength()));
  std::cout << "written " << written.size() << " bytes:\n" << written;
  if (written != text) {
    std::cout << "the written text differs from the parsed text\n";
    return 1;
  }
  std::cout << "the written text is the parsed text, byte for byte\n";
}
