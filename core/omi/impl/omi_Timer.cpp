#include "omi/omi_Timer.h"

#include <chrono>

omi_Timer::omi_Timer() : m_running(false), m_wallStart(0), m_cpuStart(0), m_wallTotal(0), m_cpuTotal(0) {}

void omi_Timer::Start()
{
    if (m_running)
        return;
    m_running = true;
    m_wallStart = WallNow();
    m_cpuStart = CpuNow();
}

void omi_Timer::Stop()
{
    if (!m_running)
        return;
    m_wallTotal += WallNow() - m_wallStart;
    m_cpuTotal += CpuNow() - m_cpuStart;
    m_running = false;
}

void omi_Timer::Reset()
{
    m_running = false;
    m_wallStart = m_cpuStart = m_wallTotal = m_cpuTotal = 0;
}

double omi_Timer::ElapsedSeconds() const { return m_wallTotal + (m_running ? WallNow() - m_wallStart : 0.0); }

double omi_Timer::CpuSeconds() const { return m_cpuTotal + (m_running ? CpuNow() - m_cpuStart : 0.0); }

double omi_Timer::WallNow()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}
