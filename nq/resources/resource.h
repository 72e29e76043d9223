// resource.h -- values that many objects share, each stored once.
//
// A database (NQResourceDB) interns resources: inserting one that equals a stored
// one gives the stored one, and counts its holders. Whoever inserted it, removes it
// when it is done with it. A resource can be made permanent: then it stays when
// nobody holds it any more, and another database can copy it. What a resource holds
// is told by its class: colours (color_resource.h), shapes (shape_resource.h), or a
// class of the application's, which says what equal means.
//
//   NQColorResourceDB colors;
//   const NQResource* red = colors.insert(new NQColorResource(&colors, &value));
//   ...
//   delete colors.remove(red);
//
// A database owns the resources that it stores. A resource that nobody holds,
// refCount() 0, belongs to whoever made it, until it is inserted: then it is stored
// or, when its equal is, deleted. A resource that a database holds is never shared
// with another one, which stores a clone. The value of a stored resource must not
// be changed; it is found by the value with which it was inserted. A database must
// live longer than the resources that name it (pResourceDB).
//
// Inserting, removing and searching cost one hash, and O(log n) for a new value.
//
// How it works
//   The list holds the stored resources in ascending order of their sort keys, equal
//   keys in the order of their insertion. Beside it a table finds resources by
//   their hashes, and a tree the last one of each key, which is where a new one is
//   linked. Each resource knows the one before it, so that its cell can be removed
//   from the singly linked list without a walk.

#ifndef NQ_RESOURCES_RESOURCE_H
#define NQ_RESOURCES_RESOURCE_H

#include <cstdint>
#include <memory>

#include "nq/containers/slist.h"
#include "nq/core/copy_protocol.h"

class NQResourceDB;

// A copy starts with nobody holding it, and takes over the source's database if it
// has none.
class NQ_EXPORT NQResource : public NQObject {
  NQ_COPY_ROUTINES(NQResource)

 public:
  // For a database, which may be null.
  explicit NQResource(NQResourceDB* database = nullptr) : pResourceDB_(database) {}
  NQResource(const NQResource& source, NQDeepFlagEnum flag);
  NQResource(const NQResource& source);
  NQResource& operator=(const NQResource& source);
  ~NQResource() override;

  void copyObject(const NQObject* source) override;
  void copyAttributes(const NQObject* source) override;
  NQResource* cloneObject() const;
  NQResource* cloneAttributes() const;
  static NQResource* castDown(const NQObject* object);

  // The number of holders, and 0x3FFFFFFF more for a permanent resource.
  nqLong refCount() const { return refCount_; }
  int permanent() const { return refCount_ >= kPermanent ? 1 : 0; }
  // The database that the resource was made for, or that stores it; null once it
  // has left that.
  NQResourceDB* pResourceDB() const { return pResourceDB_; }
  // pResourceDB()->index(this); -1 without a database.
  nqLong index() const;

  // By what resources are ordered.
  virtual nqLong sortKey() const = 0;
  // Whether the values are equal; equal values have equal sort keys. `other` is null,
  // which equals nothing, or has the type of this object: all resources of a database
  // are of one class.
  virtual int isEqual(const NQResource* other) const = 0;

  // Takes the resource out of its database, whoever holds it; called when it is
  // destroyed.
  void cleanup();

 protected:
  NQObject* vCloneObject() const override = 0;
  NQObject* vCloneAttributes() const override = 0;

  // Called to search for the resource: a number that equal values share and others
  // should not. Here the sort key; to be overridden where many values have the same.
  virtual nqInt64 vHash() const;

 private:
  friend class NQResourceDB;
  friend class NQTestPeer;

  static constexpr nqLong kPermanent = 0x3FFFFFFF;

  // Where and how the database stores the resource.
  struct Place {
    NQSListCell* cell = nullptr;       // null: it is not stored
    NQResource* previous = nullptr;    // in the database's list
    NQResource* nextOfHash = nullptr;  // in a bucket of its table
    std::uint32_t hash = 0;
    nqLong key = 0;
  };

  void copyFields(const NQResource& source);

  nqLong refCount_ = 0;  // not 0 while stored
  NQResourceDB* pResourceDB_ = nullptr;
  Place place_;
};

// Not copied: copyObject() takes over nothing, and a clone is a plain NQObject.
class NQ_EXPORT NQResourceDB : public NQObject {
 public:
  NQResourceDB();
  NQResourceDB(const NQResourceDB&) = delete;
  NQResourceDB& operator=(const NQResourceDB&) = delete;
  ~NQResourceDB() override;

  static NQResourceDB* castDown(const NQObject* object);

  // In all operations a resource stands for the stored one that equals it; it need
  // not be stored itself.

  // The position (from 1) in the list, -1 when there is none. O(n).
  nqLong index(const NQResource* resource) const;
  // The stored resources; the list and what it holds are not to be changed.
  const NQSList* pResourceList() const;

  // Interns the resource and counts one holder more. The answer is the stored one,
  // which the caller is to use from now on: the resource itself, kept, if nobody
  // holds it; an older one, and the resource is deleted if nobody holds it; or a
  // clone of it. Null for null, and when memory is exhausted.
  const NQResource* insert(const NQResource* resource);
  // Counts one holder less. The answer is the caller's: the resource itself when
  // nobody is left, or else a clone. A resource that is not stored itself comes back
  // unchanged, as null does. A permanent one without holders stays so.
  NQResource* remove(const NQResource* resource);

  // 1; 0 when there is no such resource. One that is made transient without a holder
  // left is deleted.
  int makePermanent(const NQResource* resource);
  int makeTransient(const NQResource* resource);
  void makeAllPermanent();
  void makeAllTransient();
  // Inserts clones of the permanent resources of another database, and makes them
  // permanent. 0 for null and for this database, else 1.
  int copyPermanent(const NQResourceDB* other);

  // The resource that vNewResource() made for the first call, inserted and
  // permanent. When it leaves the database or is made transient, the next call makes
  // it anew.
  const NQResource* pDefaultResource();

  // Numbers the resources that a file refers to, from 0 in the order in which they
  // are given. preFileSupport() begins with none. insertForFileSupport() answers
  // the number of the resource, by its address; `append`, not 0, gives it a new one
  // in any case. The answer is -1 for null and without preFileSupport().
  // pFileSupportResource() answers null for a number not given. postFileSupport()
  // ends it, and deletes the resources too if `deleteResources` is not 0. Nothing
  // here holds the resources.
  void preFileSupport();
  nqLong insertForFileSupport(const NQResource* resource, int append);
  const NQResource* pFileSupportResource(nqLong number) const;
  // The resources in the order of their numbers; null outside file support.
  const NQSList* pResourceListForFileSupport() const;
  void postFileSupport(int deleteResources);

  // Deletes all resources, whoever holds them, and ends file support; called by the
  // destructor.
  void empty();

 protected:
  // Called for the default resource: a new one of the database's kind, with its
  // default value and nobody holding it. Handed over; may be null.
  virtual NQResource* vNewResource() = 0;

  // For operations of derived classes that intern a value: as insert(), but a resource
  // that is not stored yet is cloned, so that `probe` may live on the stack.
  const NQResource* insertCopy(const NQResource& probe);

 private:
  friend class NQResource;
  friend class NQTestPeer;

  struct Store;
  struct FileSupport;

  bool stores(const NQResource& resource) const;
  // The stored resource that equals this one, or null.
  NQResource* find(const NQResource* resource) const;
  NQResource* find(const NQResource& probe, std::uint32_t hash) const;
  std::uint32_t hashOf(const NQResource& resource) const;
  bool store(NQResource& resource, std::uint32_t hash);
  static void countHolder(NQResource& stored);
  void unlink(NQResource& resource);
  static void makePermanent(NQResource& resource);
  void makeTransient(NQResource& resource);

  std::unique_ptr<Store> store_;              // never null
  std::unique_ptr<FileSupport> fileSupport_;  // null outside file support
  const NQResource* pDefault_ = nullptr;      // stored and permanent, or null
};

#endif  // NQ_RESOURCES_RESOURCE_H
