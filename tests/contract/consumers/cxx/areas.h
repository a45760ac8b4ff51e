// tests/contract/consumers/cxx/areas.h: what the C++ programs try, area by area.
#pragma once

void use_portability();
void use_fileutil();
void use_network();
void use_session();
void use_sysprops();
void use_config();
