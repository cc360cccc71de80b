#pragma once

#include <memory>

#include <glib-object.h>

namespace Platform {

// Owners of what GLib hands out with a reference or a free function to it.

struct GObjectUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <class T>
using GObjectPointer = std::unique_ptr<T, GObjectUnref>;

template <auto release>
struct GRelease {
  template <class T>
  void operator()(T* item) const {
    release(item);
  }
};
using GCharPointer = std::unique_ptr<char, GRelease<g_free>>;
using GMainContextPointer = std::unique_ptr<GMainContext, GRelease<g_main_context_unref>>;
using GVariantPointer = std::unique_ptr<GVariant, GRelease<g_variant_unref>>;

// Makes `context` the one in which the calling thread's asynchronous operations report, for as
// long as the object lives. Must go on the thread on which it was made.
class ThreadDefaultContext {
 public:
  explicit ThreadDefaultContext(GMainContext* context) : context_(context) {
    g_main_context_push_thread_default(context_);
  }
  ~ThreadDefaultContext() { g_main_context_pop_thread_default(context_); }
  ThreadDefaultContext(const ThreadDefaultContext&) = delete;
  ThreadDefaultContext& operator=(const ThreadDefaultContext&) = delete;

 private:
  GMainContext* const context_;
};

}  // namespace Platform
