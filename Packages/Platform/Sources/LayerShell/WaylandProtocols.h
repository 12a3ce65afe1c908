#pragma once

// For sources, and headers that only sources of this folder include.

#include <fractional-scale-v1-client.h>
#include <idle-inhibit-unstable-v1-client.h>
#include <key-states-client.h>
#include <layer-shell-client.h>
#include <viewporter-client.h>
#include <wayland-client.h>
#include <xdg-output-unstable-v1-client.h>
