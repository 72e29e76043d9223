// shape_resource.h -- shapes that many objects share; see resource.h.

#ifndef NQ_RESOURCES_SHAPE_RESOURCE_H
#define NQ_RESOURCES_SHAPE_RESOURCE_H

#include "nq/geometry/shape.h"
#include "nq/resources/resource.h"

class NQShapeResourceDB;

// Equal are resources whose shapes NQShape::compare() finds equal.
class NQ_EXPORT NQShapeResource : public NQResource {
  NQ_COPY_PROTOCOL(NQShapeResource)

 public:
  // A copy of `shape`; the default shape for null.
  explicit NQShapeResource(NQShapeResourceDB* database = nullptr,
                           const NQShape* shape = nullptr);
  ~NQShapeResource() override;

  const NQShape* pShape() const { return &shape_; }

  // 0 for rectangles and 1 for ellipses; twice the number of corners for convex
  // polygons, and 1 more for others; -1 for any other type.
  nqLong sortKey() const override;
  int isEqual(const NQResource* other) const override;

 protected:
  void init();
  // Of the whole shape; for derived classes, whose isEqual() may leave out a part of
  // it, the sort key: many of theirs with one key should have a hash of their own.
  nqInt64 vHash() const override;

 private:
  void copyFields(const NQShapeResource& source);

  NQShape shape_;
};

// The default resource is the default shape.
class NQ_EXPORT NQShapeResourceDB : public NQResourceDB {
 public:
  NQShapeResourceDB() = default;
  ~NQShapeResourceDB() override;

  static NQShapeResourceDB* castDown(const NQObject* object);

  using NQResourceDB::insert;
  // Interns a shape without making a resource for it first. Null when memory is
  // exhausted.
  const NQShapeResource* insert(const NQShape& shape);

 protected:
  NQResource* vNewResource() override;
};

#endif  // NQ_RESOURCES_SHAPE_RESOURCE_H
