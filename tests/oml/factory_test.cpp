#include "nq/oml/factory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "nq/oml/grammar.h"
#include "nq/oml/oml_file.h"

namespace {

// The kinds of objects in the order of their slots.
#define KINDS_WITH_FLAG_1(X) X(GraphManager) X(Graph) X(Node) X(Edge) X(Intergraph)
#define KINDS_WITH_FLAG_2(X) X(MGraphManager) X(MGraph) X(MNode) X(MEdge) X(InterMGraph)
#define KINDS_WITH_FLAG_3(X) X(DGraphManager) X(DGraph) X(DNode) X(DEdge)
#define KINDS_WITH_FLAG_4(X) \
  X(Connector) X(GraphLabel) X(NodeLabel) X(EdgeLabel) X(InterDGraph)
#define KINDS_WITH_FLAG(X) \
  KINDS_WITH_FLAG_1(X) KINDS_WITH_FLAG_2(X) KINDS_WITH_FLAG_3(X) KINDS_WITH_FLAG_4(X)
#define KINDS_WITH_OWNER(X) X(PNode) X(PEdge)
#define KINDS_OF_FILES(X) X(GraphFile) X(MGraphFile) X(DGraphFile)
#define KINDS_OF_GRAMMARS(X) X(Grammar) X(MGrammar) X(DGrammar)

// Opens the hooks to tests and calls them as anybody could.
struct BareFactory : NQUFactory {
#define OPEN(KIND) using NQUFactory::vNew##KIND;
  KINDS_WITH_FLAG(OPEN)
  KINDS_WITH_OWNER(OPEN)
  KINDS_OF_FILES(OPEN)
  KINDS_OF_GRAMMARS(OPEN)
#undef OPEN
};

// Writes down each call of a hook, and makes what it was told to.
struct NotingFactory : NQUFactory {
  std::string calls;
  NQOMLObject made;
  NQOMLFile file;
  NQOMLStatic grammar{static_cast<const char* const*>(nullptr),
                      nullptr,
                      nullptr,
                      nullptr,
                      10,
                      10,
                      10,
                      10,
                      10,
                      10};

  const char* ownerName(const NQOMLObject* owner) const {
    return owner == this ? "factory" : owner == &made ? "made" : "?";
  }

#define NOTE(KIND)                                                                   \
  NQOMLObject* vNew##KIND(NQOMLObject* owner, int flag) override {                   \
    calls += std::string(#KIND " ") + ownerName(owner) + " " + std::to_string(flag); \
    return &made;                                                                    \
  }
  KINDS_WITH_FLAG(NOTE)
#undef NOTE
#define NOTE(KIND)                                       \
  NQOMLObject* vNew##KIND(NQOMLObject* owner) override { \
    calls += std::string(#KIND " ") + ownerName(owner);  \
    return &made;                                        \
  }
  KINDS_WITH_OWNER(NOTE)
#undef NOTE
#define NOTE(KIND)                                      \
  NQOMLFile* vNew##KIND(NQOMLObject* owner) override {  \
    calls += std::string(#KIND " ") + ownerName(owner); \
    return &file;                                       \
  }
  KINDS_OF_FILES(NOTE)
#undef NOTE
#define NOTE(KIND)                     \
  NQOMLStatic* vNew##KIND() override { \
    calls += #KIND;                    \
    return &grammar;                   \
  }
  KINDS_OF_GRAMMARS(NOTE)
#undef NOTE
};

TEST(NQUFactory, EachOperationAsksItsHook) {
  NotingFactory factory;
  const auto noted = [&factory] {
    std::string calls;
    calls.swap(factory.calls);
    return calls;
  };
#define ASK(KIND)                                                   \
  EXPECT_EQ(factory.nqNew##KIND(nullptr, 7), &factory.made);        \
  EXPECT_EQ(noted(), #KIND " factory 7");                           \
  EXPECT_EQ(factory.nqNew##KIND(&factory.made, -1), &factory.made); \
  EXPECT_EQ(noted(), #KIND " made -1");
  KINDS_WITH_FLAG(ASK)
#undef ASK
#define ASK(KIND)                                               \
  EXPECT_EQ(factory.nqNew##KIND(nullptr), &factory.made);       \
  EXPECT_EQ(noted(), #KIND " factory");                         \
  EXPECT_EQ(factory.nqNew##KIND(&factory.made), &factory.made); \
  EXPECT_EQ(noted(), #KIND " made");
  KINDS_WITH_OWNER(ASK)
#undef ASK
#define ASK(KIND)                                               \
  EXPECT_EQ(factory.nqNew##KIND(nullptr), &factory.file);       \
  EXPECT_EQ(noted(), #KIND " factory");                         \
  EXPECT_EQ(factory.nqNew##KIND(&factory.made), &factory.file); \
  EXPECT_EQ(noted(), #KIND " made");
  KINDS_OF_FILES(ASK)
#undef ASK
#define ASK(KIND)                                     \
  EXPECT_EQ(factory.nqNew##KIND(), &factory.grammar); \
  EXPECT_EQ(noted(), #KIND);
  KINDS_OF_GRAMMARS(ASK)
#undef ASK
}

TEST(NQUFactory, MakesNothingByItself) {
  NQUFactory factory;
#define ASK(KIND) EXPECT_EQ(factory.nqNew##KIND(nullptr, 0), nullptr);
  KINDS_WITH_FLAG(ASK)
#undef ASK
#define ASK(KIND) EXPECT_EQ(factory.nqNew##KIND(nullptr), nullptr);
  KINDS_WITH_OWNER(ASK)
  KINDS_OF_FILES(ASK)
#undef ASK
#define ASK(KIND) EXPECT_EQ(factory.nqNew##KIND(), nullptr);
  KINDS_OF_GRAMMARS(ASK)
#undef ASK
}

TEST(NQUFactory, InterGraphsAreGraphsOfTheirFamily) {
  struct GraphFactory : NQUFactory {
    NQOMLObject graph;
    NQOMLObject mGraph;
    NQOMLObject dGraph;
    int flags = 0;
    NQOMLObject* answer(NQOMLObject& made, const NQOMLObject* owner, int flag) {
      flags += flag;
      return owner == this ? &made : nullptr;
    }
    NQOMLObject* vNewGraph(NQOMLObject* owner, int flag) override {
      return answer(graph, owner, flag);
    }
    NQOMLObject* vNewMGraph(NQOMLObject* owner, int flag) override {
      return answer(mGraph, owner, flag);
    }
    NQOMLObject* vNewDGraph(NQOMLObject* owner, int flag) override {
      return answer(dGraph, owner, flag);
    }
  } factory;
  EXPECT_EQ(factory.nqNewIntergraph(nullptr, 1), &factory.graph);
  EXPECT_EQ(factory.nqNewInterMGraph(nullptr, 10), &factory.mGraph);
  EXPECT_EQ(factory.nqNewInterDGraph(nullptr, 100), &factory.dGraph);
  EXPECT_EQ(factory.flags, 111);
  EXPECT_EQ(factory.nqNewNode(nullptr, 0), nullptr);
}

// Where a virtual operation stands in the table: both of our platforms keep one
// plus its offset in a pointer to it.
template <class Operation>
std::size_t slotOf(Operation operation) {
  std::size_t word = 0;
  static_assert(sizeof operation >= sizeof word);
  std::memcpy(&word, &operation, sizeof word);
  return (word - 1) / sizeof(void*);
}

TEST(NQUFactory, KeepsTheOrderOfItsSlots) {
  std::vector<std::string> names;
  std::vector<std::size_t> slots;
#define ADD(KIND)         \
  names.push_back(#KIND); \
  slots.push_back(slotOf(&BareFactory::vNew##KIND));
  KINDS_WITH_FLAG_1(ADD)
  ADD(GraphFile)
  ADD(Grammar)
  KINDS_WITH_FLAG_2(ADD)
  ADD(MGraphFile)
  ADD(MGrammar)
  KINDS_WITH_FLAG_3(ADD)
  KINDS_WITH_OWNER(ADD)
  KINDS_WITH_FLAG_4(ADD)
  ADD(DGraphFile)
  ADD(DGrammar)
#undef ADD
  ASSERT_EQ(slots.size(), 27U);
  EXPECT_GT(slots.front(), 8U) << "behind those of the root";
  for (std::size_t n = 1; n < slots.size(); ++n) {
    EXPECT_EQ(slots[n], slots[0] + n) << names[n];
  }
}

TEST(NQUFactory, KeepsTheCreatorString) {
  NQUFactory factory;
  EXPECT_STREQ(factory.pCreatorString(nullptr), "Quorvane");
  EXPECT_STREQ(factory.pCreatorString("somebody else"), "somebody else");
  EXPECT_STREQ(factory.pCreatorString(factory.pCreatorString() + 9), "else");
  EXPECT_STREQ(factory.pCreatorString(), "else");
  EXPECT_STREQ(factory.pCreatorString(""), "");
  EXPECT_STREQ(factory.pCreatorString(nullptr), "");
  EXPECT_EQ(factory.isOMLObject(), 1);
  EXPECT_EQ(NQUFactory::castDown(&factory), &factory);
}

}  // namespace
