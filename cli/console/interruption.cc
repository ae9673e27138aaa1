// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/interruption.h"

#include <array>
#include <cstddef>

namespace kestan_cli {
namespace {

constexpr std::array kSignals{SIGHUP, SIGINT, SIGTERM};

volatile std::sig_atomic_t g_signal = 0;  // the one that came; 0: none
bool g_thrown = false;                    // whether somebody knows of it

int g_objects = 0;  // that exist

std::array<struct sigaction, kSignals.size()> g_earlier{};

// The second signal, of whatever kind, ends the process when the handler returns.
void Remember(int signal) {
  if (g_signal != 0) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
  }
  g_signal = signal;
}

}  // namespace

Interruption::Interruption() {
  if (g_objects++ > 0) return;
  g_signal = 0;
  g_thrown = false;
  struct sigaction action {};
  action.sa_handler = Remember;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], nullptr, &g_earlier[i]);
    if (g_earlier[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
  }
}

Interruption::~Interruption() {
  if (--g_objects > 0) return;
  for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &g_earlier[i], nullptr);
  const int signal = g_signal;
  g_signal = 0;  // nothing asks for what begins later to end
  if (signal != 0 && !g_thrown) std::raise(signal);
}

bool Interruption::HasCome() { return g_signal != 0; }

void Interruption::Check() {
  if (!HasCome()) return;
  g_thrown = true;
  throw Interrupted(g_signal);
}

}  // namespace kestan_cli
