#include "mrm/mrm_Manager.h"

#include "atr/atr_translate.h"
#include "mrm/mrm_Exception.h"

namespace {

atr_String PoolErrorText(const char* what, const mrm_Label& label)
{
    return atr_translate("Memory manager: %1$s (%2$s)").Arg(what).Arg(label.GetName().AsAtrString()).Result();
}

// For a pool pointer that is not ours: it may be dangling, so nothing of it is read.
atr_String UnknownPoolText(const char* what)
{
    return atr_translate("Memory manager: %1$s").Arg(what).Result();
}

template <class T>
int IndexOf(const cow_1DArrayList<T*>& list, const T* item)
{
    for (int i = 0; i < list.Count(); ++i)
        if (list[i] == item)
            return i;
    return -1;
}

template <class T>
T* FindByLabel(const cow_1DArrayList<T*>& list, const mrm_Label& label)
{
    for (int i = 0; i < list.Count(); ++i)
        if (list[i]->GetLabel() == label)
            return list[i];
    return nullptr;
}

}  // namespace

mrm_Manager& mrm_Manager::Instance()
{
    return omi_Singleton<mrm_Manager>::Instance();
}

bool mrm_Manager::Exists()
{
    return omi_SingletonBase<mrm_Manager>::Instance() != nullptr;
}

void mrm_Manager::Finalize()
{
    omi_SingletonBase<mrm_Manager>::Finalize();
}

mrm_Manager::mrm_Manager() : m_default(nullptr), m_nextAltNumber(1), m_printers{nullptr, nullptr, nullptr, nullptr}
{
    mrm_Capacity unlimited;
    unlimited.SetUnlimited();
    m_default = new mrm_LargeBlockPool(m_table, "default", unlimited, m_nextAltNumber++);
}

mrm_Manager::~mrm_Manager()
{
    // Small-block pools give their reserves back before their providers end.
    for (int i = 0; i < m_pools.Count(); ++i)
        delete m_pools[i];
    for (int i = 0; i < m_largePools.Count(); ++i)
        delete m_largePools[i];
    delete m_default;
}

void mrm_Manager::DefinePool(const mrm_Label& label, const mrm_Capacity& capacity)
{
    for (int i = 0; i < m_definitions.Count(); ++i) {
        if (m_definitions[i].label == label) {
            m_definitions.Get(i).capacity = capacity;
            return;
        }
    }
    m_definitions.Append(Definition{label, capacity});
}

bool mrm_Manager::FindDefinition(const mrm_Label& label, mrm_Capacity& capacity) const
{
    for (int i = 0; i < m_definitions.Count(); ++i) {
        if (m_definitions[i].label == label) {
            capacity = m_definitions[i].capacity;
            return true;
        }
    }
    return false;
}

mrm_LargeBlockPool* mrm_Manager::StartLargeBlockPool(const mrm_Label& label, const mrm_Capacity& capacity)
{
    if (FindLargeBlockPool(label))
        NEX_RAISE(mrm_Exception, PoolErrorText("a large-block pool of this label is active", label));
    mrm_LargeBlockPool* pool = new mrm_LargeBlockPool(m_table, label, capacity, m_nextAltNumber);
    try {
        m_largePools.Append(pool);
    } catch (...) {
        delete pool;
        throw;
    }
    ++m_nextAltNumber;
    return pool;
}

mrm_LargeBlockPool* mrm_Manager::FindLargeBlockPool(const mrm_Label& label) const
{
    return FindByLabel(m_largePools, label);
}

bool mrm_Manager::Holds(const mrm_LargeBlockPool* pool) const
{
    return pool == m_default || IndexOf(m_largePools, pool) >= 0;
}

void mrm_Manager::ShutdownLargeBlockPool(mrm_LargeBlockPool* pool)
{
    if (!pool)
        return;
    if (!Holds(pool))
        NEX_RAISE(mrm_Exception, UnknownPoolText("not an active large-block pool"));
    for (int i = 0; i < m_pools.Count(); ++i)
        if (&m_pools[i]->ConstGetProvider() == pool)
            NEX_RAISE(mrm_Exception, PoolErrorText("the pool still provides for a small-block pool", pool->GetLabel()));
    if (pool == m_default)
        m_default = nullptr;
    else
        m_largePools.Remove(IndexOf(m_largePools, pool));  // the list is never shared: no allocation
    delete pool;
}

mrm_Pool* mrm_Manager::StartPool(const mrm_Label& label, mrm_LargeBlockPool& provider,
                                 const mrm_SmallBlockCapacity& capacity)
{
    if (!Holds(&provider))
        NEX_RAISE(mrm_Exception, UnknownPoolText("the provider is not an active large-block pool"));
    if (FindPool(label))
        NEX_RAISE(mrm_Exception, PoolErrorText("a small-block pool of this label is active", label));
    mrm_Pool* pool = new mrm_Pool(provider, label, capacity);
    try {
        m_pools.Append(pool);
    } catch (...) {
        delete pool;
        throw;
    }
    return pool;
}

mrm_Pool* mrm_Manager::FindPool(const mrm_Label& label) const
{
    for (int i = 0; i < m_pools.Count(); ++i)
        if (m_pools[i]->ConstGetLabel() == label)
            return m_pools[i];
    return nullptr;
}

void mrm_Manager::ShutdownPool(mrm_Pool* pool)
{
    if (!pool)
        return;
    const int i = IndexOf(m_pools, pool);
    if (i < 0)
        NEX_RAISE(mrm_Exception, UnknownPoolText("not an active small-block pool"));
    m_pools.Remove(i);
    delete pool;
}

mrm_LargeBlockPool* mrm_LargeBlockPoolFactory::Startup(const mrm_Label& label)
{
    mrm_Manager& manager = mrm_Manager::Instance();
    mrm_Capacity capacity;
    if (!manager.FindDefinition(label, capacity))
        return nullptr;
    return manager.StartLargeBlockPool(label, capacity);
}

mrm_LargeBlockPool* mrm_LargeBlockPoolFactory::SpotStartup(const mrm_Label& label, const mrm_Label& definition,
                                                           const mrm_Capacity& capacity)
{
    mrm_Manager& manager = mrm_Manager::Instance();
    mrm_Capacity defined = capacity;
    manager.FindDefinition(definition, defined);
    return manager.StartLargeBlockPool(label, defined);
}

mrm_LargeBlockPool* mrm_LargeBlockPoolFactory::GetPool(const mrm_Label& label)
{
    mrm_Manager& manager = mrm_Manager::Instance();
    mrm_LargeBlockPool* pool = manager.FindLargeBlockPool(label);
    return pool ? pool : manager.GetDefaultPool();
}

void mrm_LargeBlockPoolFactory::Shutdown(mrm_LargeBlockPool* pool)
{
    mrm_Manager::Instance().ShutdownLargeBlockPool(pool);
}

mrm_Pool* mrm_PoolFactory::SpotStartup(const mrm_Label& label, const mrm_Label& providerLabel,
                                       const mrm_SmallBlockCapacity& capacity)
{
    mrm_LargeBlockPool* provider = mrm_LargeBlockPoolFactory::GetPool(providerLabel);
    if (!provider)
        NEX_RAISE(mrm_Exception, PoolErrorText("no large-block pool to provide for", providerLabel));
    return mrm_Manager::Instance().StartPool(label, *provider, capacity);
}

void mrm_PoolFactory::Shutdown(mrm_Pool* pool)
{
    mrm_Manager::Instance().ShutdownPool(pool);
}

void mrm_Manager::RegisterLabelPrinter(int kind, mrm_LabelPrinter printer)
{
    if (kind < 0 || kind >= kLabelKinds)
        NEX_RAISE(mrm_Exception, atr_translate("mrm_Manager: no label kind %d").Arg(kind).Result());
    m_printers[kind] = printer;
}

cow_String mrm_Manager::PrintLabel(int kind, const mrm_Label& label) const
{
    if (kind >= 0 && kind < kLabelKinds && m_printers[kind])
        return m_printers[kind](label);
    return label.GetName();
}

namespace {

cow_String PrintJobPhase(const mrm_Label& label)
{
    cow_String text("job phase ");
    return text += label.GetName();
}

cow_String PrintTest(const mrm_Label& label)
{
    cow_String text("test ");
    return text += label.GetName();
}

cow_String PrintStepPhase(const mrm_Label& label)
{
    cow_String text("step phase ");
    return text += label.GetName();
}

cow_String PrintVoid(const mrm_Label&)
{
    return cow_String("(no label)");
}

}  // namespace

void mrm_Manager::RegisterStandardLabelPrinters(mrm_Manager& manager)
{
    manager.RegisterLabelPrinter(kJobPhaseLabel, &PrintJobPhase);
    manager.RegisterLabelPrinter(kTestLabel, &PrintTest);
    manager.RegisterLabelPrinter(kStepPhaseLabel, &PrintStepPhase);
    manager.RegisterLabelPrinter(kVoidLabel, &PrintVoid);
}
