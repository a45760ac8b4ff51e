// tests/contract/consumers/c/areas.h: what the C program tries, area by area.
#pragma once

void use_handles(void);
void use_threads(void);
void use_slots(void);
void use_lock(void);
void use_stacks(void);
void use_lists(void);
void use_libraries(const char* plugin);
void use_files(void);
void use_searches(void);
void use_trees(void);
void use_identifiers(void);
void use_times(void);
void use_platforms(void);
void use_versions(const char* plugin);
void use_signals(void);
void use_numbers(void);
void use_text(void);
