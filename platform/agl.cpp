// The functions of agl.h that concern formats and contexts.
#include "platform/agl.h"

#include "platform/agl_context.h"
#include "platform/agl_errors.h"

#include <new>

using halvenor::agl::Report;

namespace {

struct Attribute {
  GLint name;
  bool hasValue;
};

constexpr Attribute kAttributes[] = {
    {AGL_RGBA, false},           {AGL_DOUBLEBUFFER, false}, {AGL_RED_SIZE, true},
    {AGL_ALPHA_SIZE, true},      {AGL_DEPTH_SIZE, true},    {AGL_NO_RECOVERY, false},
    {AGL_CLOSEST_POLICY, false},
};

const Attribute* FindAttribute(GLint name) {
  for (const Attribute& attribute : kAttributes)
    if (attribute.name == name) return &attribute;
  return nullptr;
}

/// Reads the list into `format`; false with an unknown attribute.
bool ReadAttributes(const GLint* list, HalvenorPixelFormat& format) {
  if (list == nullptr) return false;
  while (*list != AGL_NONE) {
    const Attribute* attribute = FindAttribute(*list++);
    if (attribute == nullptr) return false;
    if (!attribute->hasValue) continue;
    if (attribute->name == AGL_DEPTH_SIZE) format.depth = *list > 0;
    ++list;
  }
  return true;
}

} // namespace

AGLPixelFormat aglChoosePixelFormat(const void* /*devices*/, GLint /*deviceCount*/,
                                    const GLint* attributes) {
  HalvenorPixelFormat format;
  if (ReadAttributes(attributes, format)) return new (std::nothrow) HalvenorPixelFormat(format);
  Report(AGL_BAD_ATTRIBUTE);
  return nullptr;
}

void aglDestroyPixelFormat(AGLPixelFormat format) {
  delete format;
}

AGLContext aglCreateContext(AGLPixelFormat format, AGLContext share) {
  if (format != nullptr && share == nullptr) return new (std::nothrow) HalvenorContext(*format);
  Report(share != nullptr ? AGL_BAD_CONTEXT : AGL_BAD_PIXELFORMAT);
  return nullptr;
}

GLboolean aglDestroyContext(AGLContext context) {
  if (context == nullptr) return Report(AGL_BAD_CONTEXT);
  if (const GLenum error = context->Unrealize(); error != AGL_NO_ERROR) return Report(error);
  delete context;
  return GL_TRUE;
}

GLboolean aglSetInteger(AGLContext context, GLenum parameter, const GLint* values) {
  if (context == nullptr) return Report(AGL_BAD_CONTEXT);
  if (parameter == AGL_BUFFER_RECT) return Report(context->SetBufferRect(values));
  // Buffers belong to contexts here; of two with one name only one is ever drawn with.
  if (parameter == AGL_BUFFER_NAME) return Report(values ? AGL_NO_ERROR : AGL_BAD_VALUE);
  return Report(AGL_BAD_ENUM);
}

GLboolean aglEnable(AGLContext context, GLenum parameter) {
  if (context == nullptr) return Report(AGL_BAD_CONTEXT);
  if (parameter != AGL_BUFFER_RECT) return Report(AGL_BAD_ENUM);
  context->UseBufferRect();
  return GL_TRUE;
}

GLboolean aglSetDrawable(AGLContext context, GrafPtr port) {
  if (context == nullptr) return Report(AGL_BAD_CONTEXT);
  return Report(context->Attach(port));
}

GLboolean aglSetCurrentContext(AGLContext context) {
  if (context != nullptr) return Report(context->MakeCurrent());
  HalvenorContext::LetGo();
  return GL_TRUE;
}

GLboolean aglUpdateContext(AGLContext context) {
  if (context == nullptr) return Report(AGL_BAD_CONTEXT);
  return Report(context->Update());
}

void aglSwapBuffers(AGLContext context) {
  Report(context != nullptr ? context->Swap() : GLenum{AGL_BAD_CONTEXT});
}
