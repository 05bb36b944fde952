// The program's string resources: their ids, and the texts, which are also the code's fallback.
#pragma once

#define IDS_TASK_PATH_CONSUMER 101
#define IDS_TASK_PATH_ENTERPRISE 102

#define TASK_PATH_CONSUMER "\\Vexora\\Vexora DAT Built in test"
#define TASK_PATH_ENTERPRISE "\\Quillon\\Quillon DAT Built in test"
