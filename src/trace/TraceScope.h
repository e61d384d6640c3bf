#pragma once

/// Writes "<function>, Enter" when it is made and "<function>, Leave" when the scope ends.
/// Keeps the pointers it is given: pass string literals.
class TraceScope
{
public:
    TraceScope(const char *sourceFile, const char *function, int line);
    ~TraceScope();

    TraceScope(const TraceScope &) = delete;
    TraceScope &operator=(const TraceScope &) = delete;

private:
    const char *m_sourceFile;
    const char *m_function;
};
