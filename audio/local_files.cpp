#include "audio/local_files.h"

#include "files/released_by.h"

#include <gst/gst.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

namespace halvenor::local_files {

namespace {

using SetUri = decltype(GstURIHandlerInterface::set_uri);

struct State {
  std::mutex mutex;
  std::set<std::string> allowed;
  std::optional<std::string> refused;
  std::map<GType, SetUri> handlers; // what was there before the guard
};

/// Never destroyed: threads of GStreamer may outlive `main`.
State& TheState() {
  static State* const state = new State;
  return *state;
}

gboolean SetUriIfAllowed(GstURIHandler* handler, const char* uri, GError** error) {
  SetUri setUri = nullptr;
  {
    State& state = TheState();
    const std::scoped_lock lock(state.mutex);
    if (gst_uri_has_protocol(uri, "file") != FALSE && !state.allowed.contains(uri)) {
      state.refused = uri;
      g_set_error_literal(error, GST_URI_ERROR, GST_URI_ERROR_BAD_REFERENCE, "file refused");
      return FALSE;
    }
    for (GType type = G_OBJECT_TYPE(handler); setUri == nullptr && type != 0;
         type = g_type_parent(type))
      if (const auto found = state.handlers.find(type); found != state.handlers.end())
        setUri = found->second;
  }
  return setUri != nullptr ? setUri(handler, uri, error) : FALSE;
}

bool OpensFiles(GstElementFactory* factory) {
  if (gst_element_factory_get_uri_type(factory) != GST_URI_SRC) return false;
  const char* const* protocols = gst_element_factory_get_uri_protocols(factory);
  return protocols != nullptr && g_strv_contains(protocols, "file") != FALSE;
}

} // namespace

void Guard() {
  State& state = TheState();
  const std::scoped_lock lock(state.mutex);
  const std::unique_ptr<GList, ReleasedBy<gst_plugin_feature_list_free>> factories(
      gst_registry_get_feature_list(gst_registry_get(), GST_TYPE_ELEMENT_FACTORY));
  for (const GList* at = factories.get(); at != nullptr; at = at->next) {
    if (!OpensFiles(GST_ELEMENT_FACTORY(at->data))) continue;
    const std::unique_ptr<GstPluginFeature, ReleasedBy<gst_object_unref>> loaded(
        gst_plugin_feature_load(GST_PLUGIN_FEATURE(at->data)));
    if (!loaded) continue;
    const GType type =
        gst_element_factory_get_element_type(reinterpret_cast<GstElementFactory*>(loaded.get()));
    // Kept for ever: the interface of a type lives as long as its class.
    void* interface = g_type_interface_peek(g_type_class_ref(type), GST_TYPE_URI_HANDLER);
    SetUri& setUri = static_cast<GstURIHandlerInterface*>(interface)->set_uri;
    state.handlers[type] = std::exchange(setUri, SetUriIfAllowed);
  }
}

void Allow(const std::string& uri) {
  State& state = TheState();
  const std::scoped_lock lock(state.mutex);
  state.allowed.insert(uri);
}

std::optional<std::string> TakeRefused() {
  State& state = TheState();
  const std::scoped_lock lock(state.mutex);
  return std::exchange(state.refused, std::nullopt);
}

} // namespace halvenor::local_files
