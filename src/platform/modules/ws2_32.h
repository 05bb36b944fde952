// ws2_32.dll: conversion of addresses to text.
#pragma once

#include <winsock2.h> // before any other header that brings in windows.h

#include "platform/modules/module.h"

#include <ws2tcpip.h>

namespace vantor::ws2_32 {

inline constinit SystemModule module(L"ws2_32.dll");

inline ModuleFunction<decltype(::InetNtopW)> InetNtopW(module, "InetNtopW");

} // namespace vantor::ws2_32
