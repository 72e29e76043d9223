// oml_extension.h -- helps an object to write into a file that is somebody else's.
//
// An application's class derives from NQOMLExtension, is made for the file that is
// being written or read, and there uses the file's own operations for writing and
// reporting (oml_file.h), which have the same names here. Without a file they do
// nothing, and answer 0. The file is borrowed, and must live as long as it is used.
//
// An extension can also have a file of its own, made when it is first asked for. A
// copy has neither file, and what is copied into loses its own one.

#ifndef NQ_OML_OML_EXTENSION_H
#define NQ_OML_OML_EXTENSION_H

#include <memory>

#include "nq/oml/oml_file.h"

class NQ_EXPORT NQOMLExtension : public NQObject {
  NQ_COPY_PROTOCOL(NQOMLExtension)

 public:
  explicit NQOMLExtension(NQOMLFile* file = nullptr) : pFile_(file) {}
  ~NQOMLExtension() override;

  // The size of the object and of its own file.
  virtual nqLong sizeOf() const;

  // The extension's own file, made on the first call; null if vNewOwnedOMLFile()
  // makes none, or without memory.
  NQOMLFile* pOwnedOMLFile();

 protected:
  void init();

  // Called to make the extension's own file, which it keeps: here an NQOMLFile that
  // knows the extension, see NQOMLFile::pOMLExtension().
  virtual NQOMLFile* vNewOwnedOMLFile();

  // The file for which the extension was made, or null.
  NQOMLFile* pOMLFile() const { return pFile_; }

  // Operations of that file.

  void errorMessage(NQOMLSyntaxStruct* where, int code, const char* text, int fatal) {
    if (pFile_ != nullptr) pFile_->errorMessage(where, code, text, fatal);
  }
  void warningMessage(NQOMLSyntaxStruct* where, int code, const char* text) {
    if (pFile_ != nullptr) pFile_->warningMessage(where, code, text);
  }
  int numberOfErrors() const { return pFile_ == nullptr ? 0 : pFile_->numberOfErrors(); }
  int numberOfWarnings() const {
    return pFile_ == nullptr ? 0 : pFile_->numberOfWarnings();
  }

  void writeObjectStart(const char* type, const NQOMLObject* object, int singleLine,
                        int withID) {
    if (pFile_ != nullptr) pFile_->writeObjectStart(type, object, singleLine, withID);
  }
  void writeObjectStart(const char* type, const NQObject* object, int singleLine) {
    if (pFile_ != nullptr) pFile_->writeObjectStart(type, object, singleLine);
  }
  void writeNamedObjectStart(const char* type, const char* id, int singleLine) {
    if (pFile_ != nullptr) pFile_->writeNamedObjectStart(type, id, singleLine);
  }
  void writeObjectDefaultStart(const char* type) {
    if (pFile_ != nullptr) pFile_->writeObjectDefaultStart(type);
  }
  void writeSectionStart(const char* section, int singleLine) {
    if (pFile_ != nullptr) pFile_->writeSectionStart(section, singleLine);
  }
  void writeOpeningBracket() {
    if (pFile_ != nullptr) pFile_->writeOpeningBracket();
  }
  void writeClosingBracket() {
    if (pFile_ != nullptr) pFile_->writeClosingBracket();
  }
  void writeBlancLine() {
    if (pFile_ != nullptr) pFile_->writeBlancLine();
  }

  // A word, a number or a binary value.
  template <class Value>
  void writeAttribute(const char* name, const Value& value) {
    if (pFile_ != nullptr) pFile_->writeAttribute(name, value);
  }
  void writeAttribute(const char* name, const NQOMLObject* object,
                      const NQOMLObject* context, int withName) {
    if (pFile_ != nullptr) pFile_->writeAttribute(name, object, context, withName);
  }
  void writeStringAttribute(const char* name, const char* text) {
    if (pFile_ != nullptr) pFile_->writeStringAttribute(name, text);
  }
  void writeAddressAttribute(const char* name, const char* address) {
    if (pFile_ != nullptr) pFile_->writeAddressAttribute(name, address);
  }
  void writeBoolAttribute(const char* name, int value) {
    if (pFile_ != nullptr) pFile_->writeBoolAttribute(name, value);
  }
  void writeIPBytesAttribute(const char* name, nqULong address) {
    if (pFile_ != nullptr) pFile_->writeIPBytesAttribute(name, address);
  }

  int writeHook(const char* type, const NQObject* object) {
    return pFile_ == nullptr ? 0 : pFile_->writeHook(type, object);
  }

 private:
  void copyFields(const NQOMLExtension& source);

  NQOMLFile* pFile_ = nullptr;
  std::unique_ptr<NQOMLFile> ownedFile_;  // null until it is asked for
};

#endif  // NQ_OML_OML_EXTENSION_H
