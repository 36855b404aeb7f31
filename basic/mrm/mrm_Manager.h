/// @class mrm_Manager
/// mrm_Manager: the process-wide memory manager. It owns the block table, every large-block and
/// small-block pool, and the pool definitions by label that stand in for a memory schedule.
///
/// Made on first use (at the latest by mrm_initialize) and destroyed by mrm_finalize, which ends
/// every pool that is still active. It starts with a default large-block pool (label "default",
/// unlimited), which answers for labels without an active pool of their own until it is shut
/// down.
///
/// The factories are the usual way in: they forward to the manager.
///
/// Thread rule: the memory manager takes no locks: the manager, its block table and every pool are
/// used by one thread at a time between them (pool operations change the shared table).
#ifndef MRM_MANAGER_H
#define MRM_MANAGER_H

#include "cow/cow_1DArrayList.h"
#include "mrm/mrm_BlockTable.h"
#include "mrm/mrm_Capacity.h"
#include "mrm/mrm_Label.h"
#include "mrm/mrm_LargeBlockPool.h"
#include "mrm/mrm_Pool.h"
#include "omi/omi_Singleton.h"
#include "zul_BasicExport.h"

/// Writes a label of one kind for the memory schedule's reports.
typedef cow_String (*mrm_LabelPrinter)(const mrm_Label& label);

class ZUL_BASIC_API mrm_Manager : public omi_Singleton<mrm_Manager> {
public:
    /// Label kinds: void, job phase, test, step phase.
    enum { kVoidLabel = 0, kJobPhaseLabel = 1, kTestLabel = 2, kStepPhaseLabel = 3, kLabelKinds = 4 };

    /// The instance, made on first use.
    static mrm_Manager& Instance();
    static bool Exists();
    /// Ends every pool and destroys the instance; the next Instance() makes a fresh one.
    static void Finalize();

    mrm_BlockTable& GetBlockTable() { return m_table; }

    /// The printer for one kind of label (a later registration replaces an earlier one); kinds
    /// outside 0..3 raise mrm_Exception.
    void RegisterLabelPrinter(int kind, mrm_LabelPrinter printer);
    /// The label as its kind's printer writes it; the bare name when the kind has none.
    cow_String PrintLabel(int kind, const mrm_Label& label) const;
    /// The four printers the mrm module registers at start-up, for kinds 1, 2, 3 and 0.
    static void RegisterStandardLabelPrinters(mrm_Manager& manager);

    /// Pool definitions: the capacity a large-block pool gets when it is started by label.
    /// Defining a label again replaces its capacity.
    void DefinePool(const mrm_Label& label, const mrm_Capacity& capacity);
    /// The capacity defined for a label; false when there is none.
    bool FindDefinition(const mrm_Label& label, mrm_Capacity& capacity) const;

    /// A new active large-block pool; mrm_Exception when the label already has one.
    mrm_LargeBlockPool* StartLargeBlockPool(const mrm_Label& label, const mrm_Capacity& capacity);
    /// The active pool started under a label, or null (the default pool is not looked at).
    mrm_LargeBlockPool* FindLargeBlockPool(const mrm_Label& label) const;
    /// Null once the default pool has been shut down.
    mrm_LargeBlockPool* GetDefaultPool() const { return m_default; }
    /// Ends a pool (null is ignored), releasing its blocks. mrm_Exception, with nothing changed,
    /// for a pool this manager does not hold or one that still provides for a small-block pool.
    void ShutdownLargeBlockPool(mrm_LargeBlockPool* pool);

    /// A new active small-block pool charging `provider` (a pool of this manager);
    /// mrm_Exception when the label already has one.
    mrm_Pool* StartPool(const mrm_Label& label, mrm_LargeBlockPool& provider, const mrm_SmallBlockCapacity& capacity);
    mrm_Pool* FindPool(const mrm_Label& label) const;
    /// Ends a small-block pool (null is ignored); mrm_Exception for one this manager does not hold.
    void ShutdownPool(mrm_Pool* pool);

private:
    friend class omi_Singleton<mrm_Manager>;
    friend class omi_SingletonBase<mrm_Manager>;

    struct Definition {
        mrm_Label label;
        mrm_Capacity capacity;
    };

    mrm_Manager();
    ~mrm_Manager();
    mrm_Manager(const mrm_Manager&) = delete;
    mrm_Manager& operator=(const mrm_Manager&) = delete;

    bool Holds(const mrm_LargeBlockPool* pool) const;

    mrm_BlockTable m_table;
    cow_1DArrayList<Definition> m_definitions;
    cow_1DArrayList<mrm_LargeBlockPool*> m_largePools;
    cow_1DArrayList<mrm_Pool*> m_pools;
    mrm_LargeBlockPool* m_default;
    int m_nextAltNumber;
    mrm_LabelPrinter m_printers[kLabelKinds];
};

/// Large-block pools by label.
class ZUL_BASIC_API mrm_LargeBlockPoolFactory {
public:
    /// Starts the pool defined for the label; null when the label has no definition.
    static mrm_LargeBlockPool* Startup(const mrm_Label& label);
    /// Starts a pool under `label` on the spot: with the capacity defined for `definition` when
    /// there is one, else with `capacity`.
    static mrm_LargeBlockPool* SpotStartup(const mrm_Label& label, const mrm_Label& definition,
                                           const mrm_Capacity& capacity);
    /// The active pool of the label, else the default pool if that is active, else null.
    static mrm_LargeBlockPool* GetPool(const mrm_Label& label);
    static void Shutdown(mrm_LargeBlockPool* pool);
};

/// Small-block pools by label.
class ZUL_BASIC_API mrm_PoolFactory {
public:
    /// Starts a pool whose provider is GetPool(providerLabel); mrm_Exception when there is none.
    static mrm_Pool* SpotStartup(const mrm_Label& label, const mrm_Label& providerLabel,
                                 const mrm_SmallBlockCapacity& capacity);
    static void Shutdown(mrm_Pool* pool);
};

#endif
