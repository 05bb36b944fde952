// The program's string resources: their numbers, and the texts themselves, which the code falls back to.
#pragma once

#define IDS_TASK_PATH_CONSUMER 101
#define IDS_TASK_PATH_ENTERPRISE 102

#define TASK_PATH_CONSUMER "\\Vexora\\Vexora DAT Built in test"
#define TASK_PATH_ENTERPRISE "\\Quillon\\Quillon DAT Built in test"
