#ifndef MORVEL_EXCEPTION_EXCEPTIONBASE_H
#define MORVEL_EXCEPTION_EXCEPTIONBASE_H

#include <exception>
#include <stdexcept>
#include <string>

#if defined(_WIN32)
#if defined(MORVEL_EXCEPTION_BUILD)
#define MORVEL_EXCEPTION_EXPORT __declspec(dllexport)
#else
#define MORVEL_EXCEPTION_EXPORT __declspec(dllimport)
#endif
#else
#define MORVEL_EXCEPTION_EXPORT __attribute__((visibility("default")))
#endif

namespace morvel
{

/// Base of every exception that crosses the boundary between a host and its plug-ins.
///
/// Lives in a shared library of its own and keeps every member out of line, so that host and plug-ins hold one and the
/// same type and a `catch` by type works across libraries. Copies share the message and never throw. Immutable: any
/// number of threads may read one object.
class MORVEL_EXCEPTION_EXPORT ExceptionBase : public std::exception
{
public:
    /// Copies the message; std::bad_alloc when there is no memory for it.
    explicit ExceptionBase(const std::string& message);
    ExceptionBase(const ExceptionBase& other) noexcept;
    ExceptionBase& operator=(const ExceptionBase& other) noexcept;
    ~ExceptionBase() override;

    /// The message; valid while this object or a copy of it lives.
    const char* what() const noexcept override;

private:
    std::runtime_error text; // its copies share one string and never throw
};

} // namespace morvel

#endif
