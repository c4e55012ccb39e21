// The controls of the delete prompt. A button's number is the answer that it gives.
#pragma once

#define DELETE_PROMPT 100
#define CMD_NO 1001
#define CMD_NO_TO_ALL 1002
#define CMD_YES 1003
#define CMD_YES_TO_ALL 1004
#define LBL_WINDOW_MESSAGE 1010
