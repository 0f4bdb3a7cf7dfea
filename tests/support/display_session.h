// A display of a test's own, with a window manager, a keyboard and a camera.
#pragma once

#include "tests/support/servers.h"

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace halvenor::test {

inline constexpr QSize kScreen(1280, 800);

/// The program under test, running.
class Program {
public:
  Program(const QStringList& arguments, const QProcessEnvironment& environment);
  ~Program();

  /// What it wrote on standard error so far.
  std::vector<std::string> Lines();
  bool Has(const std::string& line);
  bool HasStart(const std::string& start);
  /// The last line that starts so, or an empty one.
  std::string Last(const std::string& start);
  int Count(const std::string& start);

  void Signal(int signal);
  /// The share of a processor that it takes in the next `milliseconds`.
  double Load(int milliseconds);
  /// The exit status; -1 when it did not end, or ended by a signal.
  int ExitStatus();

private:
  QProcess process_;
  QByteArray output_;
};

/// Starts what it needs and takes it down again. Where a server or tool is missing the test fails.
class DisplaySession {
public:
  virtual ~DisplaySession();

  /// `scale` is the one that the user of this display has set.
  static std::unique_ptr<DisplaySession> StartX11(double scale);
  static std::unique_ptr<DisplaySession> StartWayland(double scale);

  /// For programs that shall appear here, with folders of their own for what they store.
  const QProcessEnvironment& Environment() const { return environment_; }

  /// Presses keys by their names, one after the other: "h", "Left", "alt+v c".
  virtual void Press(const QString& keys) = 0;
  /// What a person does to the window in front.
  virtual void ResizeWindow(QSize size) = 0;
  virtual void CloseWindow() = 0;
  /// Away to where nobody sees it, and back.
  virtual void PutWindowAway() = 0;
  virtual void BringWindowBack() = 0;
  /// Runs a tool to its end in this session; its standard output.
  QByteArray Run(const QString& program, const QStringList& arguments);
  /// The whole screen as it is seen now.
  QImage Picture();

  /// Presses `keys` until `effect` is seen: the first press may find no keyboard focus yet.
  bool PressUntil(const QString& keys, const std::function<bool()>& effect);

protected:
  DisplaySession();
  void Start(const QString& program, const QStringList& arguments,
             const QProcessEnvironment& environment);
  virtual QByteArray Screenshot() = 0; ///< as PPM, which costs no time to compress

  QTemporaryDir folder_;
  QProcessEnvironment environment_;
  std::vector<std::unique_ptr<QProcess>> servers_;
};

} // namespace halvenor::test
