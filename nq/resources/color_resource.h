// color_resource.h -- colours that many objects share; see resource.h.

#ifndef NQ_RESOURCES_COLOR_RESOURCE_H
#define NQ_RESOURCES_COLOR_RESOURCE_H

#include <cstddef>
#include <new>

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

  // Memory is pooled, as that of list cells is: a resource comes with each insertion,
  // and mostly goes with it. Null when it is exhausted.
  static void* operator new(std::size_t size) noexcept;
  static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* place, std::size_t size) noexcept;

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

 protected:
  NQResource* vNewResource() override;
};

#endif  // NQ_RESOURCES_COLOR_RESOURCE_H
