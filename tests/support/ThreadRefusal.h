#ifndef FENN_TESTS_SUPPORT_THREADREFUSAL_H
#define FENN_TESTS_SUPPORT_THREADREFUSAL_H

namespace fenn::test
{

/// While it lives the system makes only so many more threads for this process, whoever asks: pthread_create, which the
/// test program replaces, then returns EAGAIN. One at a time.
class ThreadRefusal
{
public:
    explicit ThreadRefusal(int numGranted_);
    ~ThreadRefusal();
    ThreadRefusal(const ThreadRefusal& other) = delete;
    ThreadRefusal& operator=(const ThreadRefusal& other) = delete;

    int getNumRefused() const;

    /// Threads made since then.
    int getNumMade() const;

private:
    int numGranted;
};

} // namespace fenn::test

#endif
