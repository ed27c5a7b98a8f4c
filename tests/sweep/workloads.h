// The sweep's workloads and the run they report to.
#pragma once

#include <climits>
#include <cstdio>
#include <vector>

#include <zel/zel.h>

class Sweep {
public:
    Sweep(const char* workload, int failAt) : m_workload(workload), m_failAt(failAt) {}

    // Allocations between Arm and Disarm are the workload's: counted, and
    // the k-th of them fails (k = 0 counts only).
    void Arm() { zel::FailAllocationAfter(m_failAt ? m_failAt : INT_MAX); }
    void Disarm() {
        int left = zel::AllocationCountdown();
        zel::FailAllocationAfter(0);
        if (!m_failAt) counted = INT_MAX - left;
    }
    // Whether an allocation has been failed in this run so far.
    bool Injected() const { return m_failAt && zel::AllocationCountdown() == 0; }

    void Fail(int line, const char* what) {
        std::fprintf(stderr, "%s, allocation %d failing: line %d: %s\n", m_workload, m_failAt, line, what);
        ++failures;
    }

    int failures = 0;
    int counted = 0;

private:
    const char* m_workload;
    int m_failAt;
};

#define SWEEP_CHECK(s, condition) ((condition) ? void() : (s).Fail(__LINE__, #condition))

struct Workload {
    const char* name;
    void (*run)(Sweep&);
};

const std::vector<Workload>& Workloads();
