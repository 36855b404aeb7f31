/// @class cls_MetadataRegistrar
/// cls_MetadataRegistrar: the registration functions of the modules, and the registrars they
/// have filled.
///
/// It holds three registrars (the primary, the second and the third) and two lists of
/// registration functions (list A and list B). initClassMetadata(fn, flags) handles the flag bits
/// in this order:
/// @code{.unparsed}
///   cls_RegisterPrimary (1): append fn to list A and run it on the primary registrar;
///   cls_RegisterThird   (2): run fn on the third registrar, without recording it;
///   cls_RegisterSecond  (4): append fn to list B and run it on the second registrar.
/// @endcode
/// initMetadata(registrar, flags) replays list A (bit 1) and then list B (bit 4), each in
/// registration order, on another registrar.
///
/// The library's modules register at start-up into the process's instance (Instance()); every
/// class of the library lands in its third registrar, which ThirdRegistrar() answers. The cls
/// module's tear-down destroys the instance (Finalize()); the next Instance() makes a fresh one.
/// Thread rule: no locking: registration and replays run in the start-up chain, on one thread; the
/// registrars are then read as cls_ClassRegistrar.h says.
#ifndef CLS_METADATAREGISTRAR_H
#define CLS_METADATAREGISTRAR_H

#include "cls/cls_ClassRegistrar.h"
#include "cow/cow_1DArrayList.h"
#include "mem/mem_AllocationOperators.h"
#include "zul_BasicExport.h"

typedef void (*cls_RegistrationFunction)(cls_ClassRegistrar&);

/// The flag bits of initClassMetadata and initMetadata.
enum cls_RegistrarFlagEnm : unsigned {
    cls_RegisterPrimary = 1u,
    cls_RegisterThird = 2u,
    cls_RegisterSecond = 4u,
};

class ZUL_BASIC_API cls_MetadataRegistrar : public mem_AllocationOperators {
public:
    cls_MetadataRegistrar();
    ~cls_MetadataRegistrar();

    void initClassMetadata(cls_RegistrationFunction fn, unsigned flags);
    void initMetadata(cls_ClassRegistrar* registrar, unsigned flags) const;

    cls_ClassRegistrar& PrimaryRegistrar() { return m_Primary; }
    cls_ClassRegistrar& SecondRegistrar() { return m_Second; }
    cls_ClassRegistrar& ThirdRegistrar() { return m_Third; }
    /// The recorded functions, in registration order.
    ///@{
    const cow_1DArrayList<cls_RegistrationFunction>& ListA() const { return m_ListA; }
    const cow_1DArrayList<cls_RegistrationFunction>& ListB() const { return m_ListB; }
    ///@}

    /// The process's instance, made on first use.
    static cls_MetadataRegistrar& Instance();
    /// Destroys the process's instance (if any) with its registrars and lists.
    static void Finalize();
    /// Whether the process's instance exists.
    static bool Exists();

    cls_MetadataRegistrar(const cls_MetadataRegistrar&) = delete;
    cls_MetadataRegistrar& operator=(const cls_MetadataRegistrar&) = delete;

private:
    cls_ClassRegistrar m_Primary;
    cls_ClassRegistrar m_Second;
    cls_ClassRegistrar m_Third;
    cow_1DArrayList<cls_RegistrationFunction> m_ListA;
    cow_1DArrayList<cls_RegistrationFunction> m_ListB;
};

#endif
