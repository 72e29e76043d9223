// color_resource.h -- colours that many objects share; see resource.h.

#ifndef NQ_RESOURCES_COLOR_RESOURCE_H
#define NQ_RESOURCES_COLOR_RESOURCE_H

#include "nq/containers/cell_memory.h"
#include "nq/resources/color.h"
#include "nq/resources/resource.h"

class NQColorResourceDB;

// Equal are resources with the same channels and the same transparency.
class NQ_EXPORT NQColorResource : public NQResource {
  NQ_COPY_PROTOCOL(NQColorResource)

 public:
  // A copy of `color`; black for null.
  explicit NQColorResource(NQColorResourceDB* database = nullptr,
                           const NQColor* color = nullptr);
  ~NQColorResource() override;

  const NQColor* pColor() const { return &color_; }

  // The channels, red highest, without the transparency.
  nqLong sortKey() const override;
  int isEqual(const NQResource* other) const override;

  // A resource comes with each insertion, and mostly goes with it.
  NQ_CELL_MEMORY

 protected:
  void init();

 private:
  void copyFields(const NQColorResource& source);

  NQColor color_;
};

// The default resource is black.
class NQ_EXPORT NQColorResourceDB : public NQResourceDB {
 public:
  NQColorResourceDB() = default;
  ~NQColorResourceDB() override;

  static NQColorResourceDB* castDown(const NQObject* object);

  using NQResourceDB::insert;
  // Interns a colour without making a resource for it first, which is quicker. Null
  // when memory is exhausted.
  const NQColorResource* insert(const NQColor& color);

 protected:
  NQResource* vNewResource() override;
};

#endif  // NQ_RESOURCES_COLOR_RESOURCE_H
