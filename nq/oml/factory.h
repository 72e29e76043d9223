// factory.h -- makes graph objects, grammars and graph files for the layers above.
//
// Code that builds graphs asks a factory for each object, and an application
// decides what it gets: it derives from NQUFactory and overrides the vNew... hook
// behind each nqNew... operation. The objects come in three families of one shape,
// plain, M and D, with a few kinds beside them. The library itself makes nothing: a
// hook that is not overridden answers null, those of inter-graphs with a graph of
// the same family.
//
// What is made is handed over to the caller. A factory is written and read like the
// objects it makes, and is not copied: a clone is a plain NQOMLObject.

#ifndef NQ_OML_FACTORY_H
#define NQ_OML_FACTORY_H

#include <string>

#include "nq/oml/oml_object.h"

class NQOMLStatic;

class NQ_EXPORT NQUFactory : public NQOMLObject {
 public:
  NQUFactory() = default;
  NQUFactory(const NQUFactory&) = delete;
  NQUFactory& operator=(const NQUFactory&) = delete;
  ~NQUFactory() override;

  static NQUFactory* castDown(const NQObject* object);

  // The text that names the creator, "Quorvane" at first. The second form stores a
  // copy of `text` and returns it; null changes nothing, nor does a text for which there
  // is no memory. The answer is the factory's, until the next change.
  const char* pCreatorString() const { return creatorString_.c_str(); }
  const char* pCreatorString(const char* text);

  // The owner is the object that is to contain the new one; null stands for the
  // factory itself. The flag is the application's, and passed on as it is.

  NQOMLObject* nqNewGraphManager(NQOMLObject* owner, int flag) {
    return vNewGraphManager(orThis(owner), flag);
  }
  NQOMLObject* nqNewGraph(NQOMLObject* owner, int flag) {
    return vNewGraph(orThis(owner), flag);
  }
  NQOMLObject* nqNewNode(NQOMLObject* owner, int flag) {
    return vNewNode(orThis(owner), flag);
  }
  NQOMLObject* nqNewEdge(NQOMLObject* owner, int flag) {
    return vNewEdge(orThis(owner), flag);
  }
  NQOMLObject* nqNewIntergraph(NQOMLObject* owner, int flag) {
    return vNewIntergraph(orThis(owner), flag);
  }
  NQOMLFile* nqNewGraphFile(NQOMLObject* owner) { return vNewGraphFile(orThis(owner)); }
  NQOMLStatic* nqNewGrammar() { return vNewGrammar(); }

  NQOMLObject* nqNewMGraphManager(NQOMLObject* owner, int flag) {
    return vNewMGraphManager(orThis(owner), flag);
  }
  NQOMLObject* nqNewMGraph(NQOMLObject* owner, int flag) {
    return vNewMGraph(orThis(owner), flag);
  }
  NQOMLObject* nqNewMNode(NQOMLObject* owner, int flag) {
    return vNewMNode(orThis(owner), flag);
  }
  NQOMLObject* nqNewMEdge(NQOMLObject* owner, int flag) {
    return vNewMEdge(orThis(owner), flag);
  }
  NQOMLObject* nqNewInterMGraph(NQOMLObject* owner, int flag) {
    return vNewInterMGraph(orThis(owner), flag);
  }
  NQOMLFile* nqNewMGraphFile(NQOMLObject* owner) { return vNewMGraphFile(orThis(owner)); }
  NQOMLStatic* nqNewMGrammar() { return vNewMGrammar(); }

  NQOMLObject* nqNewDGraphManager(NQOMLObject* owner, int flag) {
    return vNewDGraphManager(orThis(owner), flag);
  }
  NQOMLObject* nqNewDGraph(NQOMLObject* owner, int flag) {
    return vNewDGraph(orThis(owner), flag);
  }
  NQOMLObject* nqNewDNode(NQOMLObject* owner, int flag) {
    return vNewDNode(orThis(owner), flag);
  }
  NQOMLObject* nqNewDEdge(NQOMLObject* owner, int flag) {
    return vNewDEdge(orThis(owner), flag);
  }
  NQOMLObject* nqNewInterDGraph(NQOMLObject* owner, int flag) {
    return vNewInterDGraph(orThis(owner), flag);
  }
  NQOMLFile* nqNewDGraphFile(NQOMLObject* owner) { return vNewDGraphFile(orThis(owner)); }
  NQOMLStatic* nqNewDGrammar() { return vNewDGrammar(); }

  NQOMLObject* nqNewPNode(NQOMLObject* owner) { return vNewPNode(orThis(owner)); }
  NQOMLObject* nqNewPEdge(NQOMLObject* owner) { return vNewPEdge(orThis(owner)); }
  NQOMLObject* nqNewConnector(NQOMLObject* owner, int flag) {
    return vNewConnector(orThis(owner), flag);
  }
  NQOMLObject* nqNewGraphLabel(NQOMLObject* owner, int flag) {
    return vNewGraphLabel(orThis(owner), flag);
  }
  NQOMLObject* nqNewNodeLabel(NQOMLObject* owner, int flag) {
    return vNewNodeLabel(orThis(owner), flag);
  }
  NQOMLObject* nqNewEdgeLabel(NQOMLObject* owner, int flag) {
    return vNewEdgeLabel(orThis(owner), flag);
  }

 protected:
  // Called by the operations of the same names with an owner that is never null, and
  // the flag. They stand in the order of their slots, which derived classes in other
  // modules rely on: new ones go to the end.

  virtual NQOMLObject* vNewGraphManager(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewGraph(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewNode(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewEdge(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewIntergraph(NQOMLObject* owner, int flag) {
    return vNewGraph(owner, flag);
  }
  virtual NQOMLFile* vNewGraphFile(NQOMLObject*) { return nullptr; }
  virtual NQOMLStatic* vNewGrammar() { return nullptr; }

  virtual NQOMLObject* vNewMGraphManager(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewMGraph(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewMNode(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewMEdge(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewInterMGraph(NQOMLObject* owner, int flag) {
    return vNewMGraph(owner, flag);
  }
  virtual NQOMLFile* vNewMGraphFile(NQOMLObject*) { return nullptr; }
  virtual NQOMLStatic* vNewMGrammar() { return nullptr; }

  virtual NQOMLObject* vNewDGraphManager(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewDGraph(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewDNode(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewDEdge(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewPNode(NQOMLObject*) { return nullptr; }
  virtual NQOMLObject* vNewPEdge(NQOMLObject*) { return nullptr; }
  virtual NQOMLObject* vNewConnector(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewGraphLabel(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewNodeLabel(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewEdgeLabel(NQOMLObject*, int) { return nullptr; }
  virtual NQOMLObject* vNewInterDGraph(NQOMLObject* owner, int flag) {
    return vNewDGraph(owner, flag);
  }
  virtual NQOMLFile* vNewDGraphFile(NQOMLObject*) { return nullptr; }
  virtual NQOMLStatic* vNewDGrammar() { return nullptr; }

 private:
  NQOMLObject* orThis(NQOMLObject* owner) { return owner == nullptr ? this : owner; }

  std::string creatorString_ = "Quorvane";
};

#endif  // NQ_OML_FACTORY_H
