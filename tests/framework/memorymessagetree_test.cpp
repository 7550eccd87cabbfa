// The in-memory message tree: a tree built by hand and walked with its iterator, the builder on
// callback sequences (what goes where, and the orders it takes, against the call-order checker),
// and a parse and write of the example's CSV worker through two checkers.

#include <bsutils/bitstreamworkerstatechecker.h>
#include <bsutils/bytebuffer.h>
#include <bsutils/memorymessagetree.h>
#include <bsutils/memorytreebuilder.h>
#include <bsutils/pwfexception.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "../../examples/csvworker/csvworker.h"

namespace {

std::string utf8(const char16_t* text) { return ZanStringBase(text).toUtf8(); }

bool same(const WorkerInfoPtr& a, const WorkerInfoPtr& b) {
  return a.operator->() == b.operator->();
}

// Where an iterator stands, as one word: the name, or "#" and the member id.
std::string where(const FITreeIterator& node) {
  const std::string name = utf8(node.getTagName());
  return name.empty() ? "#" + std::to_string(node.getMemberId()) : name;
}

// A part's nodes as one line, so that a whole tree is compared with one hand-written text: each
// node its name or "#" and member id, "/r" and the repeat index when not 0, "=" and the value's
// debug text, ":" and its logical type when it has a value, then its children in brackets.
std::string render(const MemoryTreeNode& part) {
  std::string text;
  for (std::int32_t i = 0; i < part.childCount(); ++i) {
    const MemoryTreeNode& node = part.child(i);
    if (i > 0) text += ' ';
    text += node.name().isEmpty() ? "#" + std::to_string(node.memberId()) : node.name().toUtf8();
    if (node.repeatIndex() != 0) text += "/r" + std::to_string(node.repeatIndex());
    if (!node.value().isNothing()) {
      text += '=' + node.value().getDebugString().getPWFStringValue().toUtf8() + ':' +
              std::to_string(node.value().getDataLogicalType());
    }
    if (node.childCount() > 0) text += '(' + render(node) + ')';
  }
  return text;
}

// The test tree, by hand: content "#10(#11=apples:2 #12=0.45:16) #10/r1(#0=7:4) note", both #10
// with tag id 100; header "hdr(version=2:4)"; no footer.
struct HandBuiltTree {
  HandBuiltTree() {
    MemoryTreeNode& first = tree.content().addChild({10, ePreDefinedStructure, 0, 100});
    first.addChild({11, ePreDefinedField}).setValue(PWFData(u"apples", eString), dataInfo);
    first.addChild({12, ePreDefinedField}).setValue(PWFData(u"0.45", eDecimal));
    first.setStartWorkerInfo(startInfo).setEndWorkerInfo(endInfo);
    MemoryTreeNode& second = tree.content().addChild({10, ePreDefinedStructure, 1, 100});
    second.addChild({}).setValue(PWFData(std::int32_t{7}));
    tree.content().addChild({u"note", eSelfDefiningField});
    MemoryTreeNode& hdr = tree.header().addChild({u"hdr", eSelfDefiningStructure});
    hdr.addChild({u"version", eSelfDefiningField}).setValue(PWFData(std::int32_t{2}));
  }
  WorkerInfoPtr startInfo = new MapWorkerInfo, dataInfo = new MapWorkerInfo;
  WorkerInfoPtr endInfo = new MapWorkerInfo;
  MemoryMessageTree tree;
};

TEST(MemoryTreeIterator, MovesWhereThereIsANodeAndStaysWhereThereIsNone) {
  enum Move { parent, firstChild, previous, next };
  const struct {
    Move move;
    bool moved;
    const char* after;
  } steps[] = {
      {parent, false, "#10"},     {previous, false, "#10"}, {firstChild, true, "#11"},
      {firstChild, false, "#11"}, {previous, false, "#11"}, {next, true, "#12"},
      {next, false, "#12"},       {previous, true, "#11"},  {parent, true, "#10"},
      {next, true, "#10"},        {firstChild, true, "#0"}, {parent, true, "#10"},
      {next, true, "note"},       {next, false, "note"},    {firstChild, false, "note"},
      {previous, true, "#10"},    {parent, false, "#10"},
  };
  const HandBuiltTree built;
  EXPECT_EQ(render(built.tree.content()), "#10(#11=apples:2 #12=0.45:16) #10/r1(#0=7:4) note");
  FITreeIterator node = built.tree.getMsgContentIterator();
  ASSERT_FALSE(node.isNull());
  for (const auto& step : steps) {
    const bool moved = step.move == parent       ? node.moveToParent()
                       : step.move == firstChild ? node.moveToFirstChild()
                       : step.move == previous   ? node.moveToPreviousSibling()
                                                 : node.moveToNextSibling();
    EXPECT_EQ(moved, step.moved) << "move " << step.move << " to " << step.after;
    EXPECT_EQ(where(node), step.after);
  }
}

TEST(MemoryTreeIterator, AnswersWhatTheNodeRecordsItsPathAndNoConstraintForTheRest) {
  const HandBuiltTree built;
  FITreeIterator node = built.tree.getMsgContentIterator();
  EXPECT_EQ(node.getTagId(), 100);
  EXPECT_EQ(node.getCategory(), ePreDefinedStructure);
  EXPECT_TRUE(node.getData().isNothing());  // a compound node has no value
  EXPECT_EQ(node.getMemberIdPath(), std::vector<std::int32_t>{10});
  EXPECT_EQ(node.getOccurrences(), 2);  // both #10s
  EXPECT_TRUE(same(node.getStartWorkerInfo(), built.startInfo));
  EXPECT_TRUE(same(node.getEndWorkerInfo(), built.endInfo));
  EXPECT_TRUE(node.getDataWorkerInfo().isNull());
  // What only a dictionary knows: "no constraint".
  const std::int32_t unconstrained[] = {node.getPathBasedInfoIndex(), node.getMinOccurs(),
                                        node.getMaxOccurs(),          node.getMinLength(),
                                        node.getMaxLength(),          node.getIsNullable()};
  EXPECT_EQ(std::vector<std::int32_t>(std::begin(unconstrained), std::end(unconstrained)),
            (std::vector<std::int32_t>{-1, 0, -1, 0, -1, 1}));
  EXPECT_TRUE(node.getNamespaceURI().isEmpty());
  EXPECT_TRUE(node.getDefaultData().isNothing());
  EXPECT_FALSE(node.hasTreeChanged());

  node.moveToFirstChild();
  EXPECT_EQ(node.getData(), PWFData(u"apples", eString));
  EXPECT_TRUE(same(node.getDataWorkerInfo(), built.dataInfo));
  node.moveToNextSibling();
  EXPECT_EQ(node.getMemberIdPath(), (std::vector<std::int32_t>{10, 12}));
  EXPECT_EQ(node.getPartialMemberPath(),
            (std::vector<MbrPathItem>{MbrPathItem(10, 0, 100), MbrPathItem(12, 0, 0)}));
  EXPECT_EQ(node.getOccurrences(), 1);
  node.moveToParent();
  node.moveToNextSibling();
  node.moveToFirstChild();  // the anonymous child of the second #10
  EXPECT_TRUE(node.isAnonymous());
  EXPECT_EQ(node.getPartialMemberPath(),
            (std::vector<MbrPathItem>{MbrPathItem(10, 1, 100), MbrPathItem(0, 0, 0)}));
  node.moveToParent();
  node.moveToNextSibling();
  EXPECT_EQ(node.getMemberIdPath(), std::vector<std::int32_t>{0});  // known by name
  EXPECT_FALSE(node.isAnonymous());
}

TEST(MemoryTreeNode, IsAnonymousWithNeitherANameNorAMemberIdAboveZero) {
  const std::pair<MemoryTreeNode, bool> nodes[] = {
      {MemoryTreeNode(), true},         {MemoryTreeNode(u"", 0), true},
      {MemoryTreeNode(0, 1), true},     {MemoryTreeNode(-4, 1), true},
      {MemoryTreeNode(u"a", 0), false}, {MemoryTreeNode(1, 1), false},
  };
  for (const auto& [node, anonymous] : nodes) EXPECT_EQ(node.isAnonymous(), anonymous);
  EXPECT_THROW(MemoryTreeNode().child(0), std::out_of_range);
}

TEST(MemoryMessageTree, HandsOutIteratorsOverItsPartsAndAnswersItsProject) {
  HandBuiltTree built;
  MemoryMessageTree& tree = built.tree;
  FITreeIterator header = tree.getMsgHeaderIterator();
  EXPECT_EQ(where(header), "hdr");
  EXPECT_TRUE(tree.getMsgFooterIterator().isNull());
  EXPECT_TRUE(MemoryMessageTree().getMsgContentIterator().isNull());
  tree.header().addChild({u"late", eSelfDefiningField});  // after the iterator was made
  EXPECT_TRUE(header.moveToNextSibling());
  EXPECT_EQ(where(header), "late");

  EXPECT_EQ(utf8(tree.getProjectId()), "");
  tree.setProjectId(u"shop");
  tree.setProjectDependencies({u"common", u"types"});
  EXPECT_EQ(utf8(tree.getProjectId()), "shop");
  EXPECT_EQ(tree.getNumProjDependencies(), 2);
  EXPECT_EQ(utf8(tree.getProjDependency(1)), "types");
  EXPECT_EQ(tree.getProjDependency(2), nullptr);
  EXPECT_EQ(tree.getProjDependency(-1), nullptr);
}

// --- the builder ---

// One callback by its checker code, with fixed arguments; eEndMessage, which no checker checks,
// too.
void deliver(FIHandler& handler, EBitstreamWorkerCall call) {
  const WorkerInfoPtr none;
  if (call == eStartMessage) return handler.startMessage(none, none);
  if (call == eEndMessage) return handler.endMessage(none);
  if (call == eStartElementByName) return handler.startElement(u"e", 0, none, 0);
  if (call == eStartElementById) return handler.startElement(7, 1, none, 0, 70);
  if (call == eEndElementByName) return handler.endElement(u"e", none);
  if (call == eEndElementById) return handler.endElement(7, none);
  if (call == eData) return handler.data(PWFData(std::int32_t{1}), none);
  if (call == eStartMessageContent) return void(handler.startMessageContent(u"body", 5, none));
  if (call == eEndMessageContent) return handler.endMessageContent(u"body", none);
  if (call == eProjectId) return handler.projectId(u"p");
  if (call == eProjectDependencies) return handler.projectDependencies({u"d"});
  ADD_FAILURE() << "not a callback: " << call;
}

TEST(MemoryTreeBuilder, PutsElementsInTheirPartNestedWithTheirValuesAndWorkerInformation) {
  const WorkerInfoPtr none, start = new MapWorkerInfo, end = new MapWorkerInfo,
                            info = new MapWorkerInfo;
  MemoryTreeBuilder builder;
  builder.startMessage(start, end);
  builder.startElement(u"hdr", eSelfDefiningStructure, info, 0);
  builder.startElement(3, ePreDefinedField, none, 2, 30);
  builder.data(PWFData(std::int32_t{5}), info);
  builder.endElement(3, info);
  builder.endElement(u"hdr", none);
  EXPECT_FALSE(builder.take());  // not ended yet
  builder.endMessage(none);      // a null end keeps the one startMessage gave
  const auto headerTree = builder.take();
  ASSERT_TRUE(headerTree);
  EXPECT_FALSE(builder.take());
  EXPECT_EQ(render(headerTree->header()), "hdr(#3/r2=5:4)");
  EXPECT_EQ(render(headerTree->content()), "");
  const MemoryTreeNode& field = headerTree->header().child(0).child(0);
  EXPECT_EQ(field.tagId(), 30);
  EXPECT_TRUE(same(field.dataWorkerInfo(), info) && same(field.endWorkerInfo(), info));
  EXPECT_TRUE(same(headerTree->header().child(0).startWorkerInfo(), info));
  EXPECT_TRUE(same(headerTree->getMsgStartWorkerInfo(), start));
  EXPECT_TRUE(same(headerTree->getMsgEndWorkerInfo(), end));

  builder.startMessage(none, none);  // the tree taken, the next message starts a new one
  builder.projectDependencies({u"common"});
  builder.projectId(u"shop");
  std::int32_t memberId = 40;
  EXPECT_TRUE(builder.startMessageContent(memberId, ePreDefinedMessage, info, 0));
  EXPECT_EQ(memberId, 40);
  builder.startElement(u"a", eSelfDefiningStructure, none, 0);
  builder.startElement(u"b", eSelfDefiningField, none, 0);
  builder.endElement(u"b", none);
  builder.data(PWFData(u"late", eString), none);  // goes to b, the element last started
  builder.endElement(u"a", none);
  builder.startElement(u"c", eSelfDefiningField, none, 1);
  builder.endElement(u"c", none);
  builder.endMessage(end);  // ends the content with it
  const auto contentTree = builder.take();
  EXPECT_EQ(render(contentTree->content()), "a(b=late:2) c/r1");
  EXPECT_EQ(render(contentTree->header()), "");
  EXPECT_EQ(utf8(contentTree->getProjectId()), "shop");
  EXPECT_EQ(utf8(contentTree->getProjDependency(0)), "common");
  EXPECT_EQ(contentTree->content().memberId(), 40);
  EXPECT_EQ(contentTree->content().category(), ePreDefinedMessage);
  EXPECT_TRUE(same(contentTree->content().startWorkerInfo(), info));
  EXPECT_TRUE(same(contentTree->getMsgEndWorkerInfo(), end));

  MemoryTreeBuilder empty;  // content ended by its own callback, with that callback's information
  empty.startMessage(none, none);
  empty.startMessageContent(u"body", eSelfDefiningMessage, none);
  empty.endMessageContent(u"body", info);
  empty.endMessage(none);
  EXPECT_TRUE(same(empty.take()->content().endWorkerInfo(), info));
}

TEST(MemoryTreeBuilder, RefusesWhatTheCheckerRefusesAndWhatMeansNothingForATree) {
  const struct {
    const char* what;
    std::vector<EBitstreamWorkerCall> taken;
    EBitstreamWorkerCall refused;
  } cases[] = {
      {"an end by id with nothing open (the checker takes it)", {eStartMessage}, eEndElementById},
      {"an end past the outermost element",
       {eStartMessage, eStartElementByName, eEndElementByName},
       eEndElementByName},
      {"a second message before the first is taken", {eStartMessage, eEndMessage}, eStartMessage},
      {"an end of message with an element open", {eStartMessage, eStartElementByName}, eEndMessage},
      {"an end of message with no message", {}, eEndMessage},
      {"data before any element", {eStartMessage}, eData},
      {"a start by id before the header", {eStartMessage}, eStartElementById},
      {"a project id before the dependencies", {eStartMessage}, eProjectId},
      {"content after header elements",
       {eStartMessage, eStartElementByName, eEndElementByName},
       eStartMessageContent},
      {"the end of content after content elements",
       {eStartMessage, eStartMessageContent, eStartElementByName, eEndElementByName},
       eEndMessageContent},
  };
  for (const auto& c : cases) {
    MemoryTreeBuilder builder;
    for (EBitstreamWorkerCall call : c.taken) deliver(builder, call);
    const std::int32_t state = builder.state();
    EXPECT_THROW(deliver(builder, c.refused), FIHandlerException) << c.what;
    EXPECT_EQ(builder.state(), state) << c.what << ": a refusal changes nothing";
  }
}

TEST(MemoryTreeBuilder, TakesExactlyTheOrdersTheCheckerTakesThatMeanSomething) {
  // Every sequence of up to kLength callbacks whose prefix both took: the builder takes the last
  // callback exactly when the checker's tree machine does and it ends no element that is not open.
  // endMessage is left out, as the checker never checks it.
  constexpr std::size_t kLength = 8;
  const EBitstreamWorkerCall callbacks[] = {eStartMessage,        eStartElementByName,
                                            eStartElementById,    eEndElementByName,
                                            eEndElementById,      eData,
                                            eStartMessageContent, eEndMessageContent,
                                            eProjectId,           eProjectDependencies};
  std::set<std::int32_t> statesSeen;
  std::function<void(std::vector<EBitstreamWorkerCall>&)> explore = [&](auto& sequence) {
    for (EBitstreamWorkerCall next : callbacks) {
      sequence.push_back(next);
      MemoryTreeBuilder builder;
      BitstreamWorkerStateChecker checker(nullptr);
      std::int32_t open = 0;
      bool checkerTook = true, meaningful = true, builderTook = true;
      for (EBitstreamWorkerCall call : sequence) {
        try {
          checker._performTreeStateTransition(call);
        } catch (const FIHandlerException&) {
          checkerTook = false;
        }
        const bool isEnd = call == eEndElementById || call == eEndElementByName;
        meaningful = !(isEnd && open == 0);
        open += call == eStartElementById || call == eStartElementByName ? 1 : isEnd ? -1 : 0;
        try {
          deliver(builder, call);
        } catch (const FIHandlerException&) {
          builderTook = false;
        }
      }
      ASSERT_EQ(builderTook, checkerTook && meaningful)
          << "after " << sequence.size() - 1 << " callbacks taken, callback " << next;
      statesSeen.insert(builder.state());
      if (builderTook && sequence.size() < kLength) explore(sequence);
      sequence.pop_back();
    }
  };
  std::vector<EBitstreamWorkerCall> sequence;
  explore(sequence);
  // Every state but 2 (reached only by endMessage) was reached and left.
  EXPECT_EQ(statesSeen, (std::set<std::int32_t>{0, 1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

// --- the example's worker, parsing and writing through checkers ---

// A checker given up with release(), however the test leaves.
struct Release {
  void operator()(BitstreamWorkerStateChecker* checker) const { checker->release(); }
};
using Checker = std::unique_ptr<BitstreamWorkerStateChecker, Release>;

std::unique_ptr<MemoryMessageTree> parseCsv(const std::string& text) {
  const Checker parser(new BitstreamWorkerStateChecker(new CsvWorker));
  MemoryTreeBuilder builder;
  const ReadOnlyByteBuffer input(text.data(), static_cast<std::int32_t>(text.size()));
  std::int32_t parsed = -1;
  parser->initializeParse(0, nullptr);
  parser->setFIHandler(&builder);
  EXPECT_EQ(parser->parse(&input, &parsed), static_cast<std::int32_t>(text.size()));
  EXPECT_EQ(parsed, static_cast<std::int32_t>(text.size()));
  return builder.take();
}

std::string writeCsv(const MemoryMessageTree& tree) {
  const Checker writer(new BitstreamWorkerStateChecker(new CsvWorker));
  ReadWriteByteBuffer output;
  bool complete = false;
  writer->initializeWrite(nullptr, &complete);
  EXPECT_TRUE(complete);
  writer->setFIMessageTree(&tree);
  const std::int32_t written = writer->write(&output);
  EXPECT_EQ(written, output.getLength());
  return written == 0 ? "" : std::string(static_cast<const char*>(output.getData(0)), written);
}

TEST(MemoryTreeCsvRoundTrip, ParsesThroughACheckerIntoTheTreeAndWritesTheSameBytesBack) {
  const std::string text = "Äpfel,12,0.45\npears,-7,1.20\n";
  const auto tree = parseCsv(text);
  ASSERT_TRUE(tree);
  EXPECT_EQ(render(tree->content()),
            "order(name=Äpfel:2 quantity=12:4 price=0.45:16) "
            "order/r1(name=pears:2 quantity=-7:4 price=1.2:16)");
  EXPECT_EQ(tree->content().child(1).child(2).value().getDecimalText().toUtf8(), "1.20");
  EXPECT_EQ(tree->content().name().toUtf8(), "orders");
  EXPECT_EQ(render(tree->header()), "");
  EXPECT_EQ(writeCsv(*tree), text);
  EXPECT_EQ(writeCsv(*parseCsv("")), "");
  EXPECT_THROW(parseCsv("a,1,2\nb,x,2\n"), FIParseException);  // a quantity not an integer
}

}  // namespace
