// Numbers of the program's string resources.
#pragma once

#define IDS_TASK_PATH_CONSUMER 101
#define IDS_TASK_PATH_ENTERPRISE 102
