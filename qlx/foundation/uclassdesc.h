// The run-time class registry: one descriptor a class, linked into a list before main begins,
// indexed once by InitUClassDesc. Belongs to the user-interface thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "basekit/cmn/cmn_types.h"
#include "qlx/foundation/uiterator.h"

/// Describes one class: name, instance size, identifier, base, factory. Descriptors are static
/// objects and live as long as the library that holds them. Registration needs nothing that another
/// static object has to build first: a base is only an address until the index is made.
class QLX_API ClassDesc {
  public:
    /// Makes a default instance as an untyped pointer to its TObject; the caller ends it with Free.
    using DefaultConstructor = void* (*)();

    /// Registers a class. The constructor may be null for a class that is never made by name; a
    /// base that is this very descriptor counts as none.
    ClassDesc(const char* name, std::uint64_t size, DefaultConstructor constructor,
              const ClassDesc* base = nullptr);
    /// A descriptor that is filled by SetFields and registered by Initialize.
    ClassDesc() = default;
    ~ClassDesc();
    ClassDesc(const ClassDesc&) = delete;
    ClassDesc& operator=(const ClassDesc&) = delete;

    void SetFields(const char* name, std::uint64_t size, DefaultConstructor constructor);
    /// Registers a descriptor that was filled field by field: new identifier, base, no subclasses.
    /// One that is registered already moves to the front of the list.
    void Initialize(const ClassDesc* base);
    static short AssignNewClassID();

    void SetClassID(short id) { mClassID = id; }
    [[nodiscard]] short GetClassID() const { return mClassID; }
    [[nodiscard]] const std::string& GetClassName() const { return mClassName; }
    [[nodiscard]] const std::string& GetNameOfClass() const { return mClassName; }
    [[nodiscard]] std::uint64_t GetClassSize() const { return mClassSize; }
    [[nodiscard]] ClassDesc* GetNextClassDesc() const { return mNext; }

    /// Sets the base when there is none yet and it is not this descriptor.
    void AddBaseClass(const ClassDesc* base);
    /// Appends a direct subclass; this descriptor itself and one already there are ignored.
    void AddSubClass(const ClassDesc* subclass);
    /// The base for n = 1, null for any other n.
    [[nodiscard]] const ClassDesc* GetBaseClass(int n) const { return n == 1 ? mBase : nullptr; }
    /// The n-th direct subclass, counting from 1; null when there is none.
    [[nodiscard]] const ClassDesc* GetSubClass(int n) const;

    /// Whether other is this descriptor or one of its ancestors.
    [[nodiscard]] bool DescendsFrom(const ClassDesc* other, bool flag) const;
    /// Makes an instance, or answers null when there is no factory.
    [[nodiscard]] void* Call_DefaultConstructor() const;

    /// Indexes the registry; needed before anything is made by name, and again after a library with
    /// further classes was loaded. Of two classes with one name the one registered first wins.
    static void InitUClassDesc();
    [[nodiscard]] static bool IsValidClassID(short id) { return id >= 1 && id <= fgNextClassID; }
    /// An unknown key answers null, and leaves an empty entry behind.
    [[nodiscard]] static const ClassDesc* GetClassDescFromClassID(short id);
    [[nodiscard]] static const ClassDesc* GetClassDescFromClassName(const std::string& name);
    /// Raises -20008 for an unknown identifier; null when the class has no factory.
    [[nodiscard]] static void* NewByClassID(short id);
    /// Null for an unknown name or a class without a factory.
    [[nodiscard]] static void* NewByClassName(const std::string& name);
    /// Writes "class_hierarchy.txt" into the application's folder: a line a class, its ancestors
    /// after a colon. Does nothing when the file cannot be written.
    static void DumpClassHierarchy();

    // Registry state, in this order.
    static ClassDesc* fgClassDescList;
    static short fgNextClassID;
    static std::map<int, const ClassDesc*> sClassDescListByID;
    static std::map<std::string, const ClassDesc*> sClassDescListByName;

  private:
    void Register(const ClassDesc* base);
    void Unlink();

    // The order of the fields is part of the binary interface.
    DefaultConstructor mDefaultConstructor = nullptr;
    ClassDesc* mNext = nullptr; // not owned; the class registered before this one
    std::string mClassName;
    std::uint64_t mClassSize = 0;
    short mClassID = 0;
    const ClassDesc* mBase = nullptr;                     // not owned
    std::vector<const ClassDesc*>* mSubClasses = nullptr; // owned; made by the first subclass
};

/// Walks descriptors from a start along the registry's list, newest first.
class QLX_API CClassIterator : public CIterator {
  public:
    explicit CClassIterator(const ClassDesc* start, bool flag = false);
    ~CClassIterator() override;
    CClassIterator(const CClassIterator&) = delete;
    CClassIterator& operator=(const CClassIterator&) = delete;
    [[nodiscard]] bool More() override;
    void Reset() override;
    void Advance() override;
    [[nodiscard]] virtual const ClassDesc* CurrentClassDesc();
    [[nodiscard]] virtual const ClassDesc* FirstClassDesc();
    [[nodiscard]] virtual const ClassDesc* NextClassDesc();

  protected:
    const ClassDesc* mStart;
    const ClassDesc* mCurrent;
    bool mFlag;
};

/// Walks from a descriptor up its chain of base classes, itself first.
class QLX_API CBaseClassIterator : public CClassIterator {
  public:
    using CClassIterator::CClassIterator;
    ~CBaseClassIterator() override;
    void Advance() override;
};
