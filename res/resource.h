// Numbers of all resources and controls; no other file gives a control a number.
#pragma once

#define IDI_TOLVENAR 101

#define IDD_MAIN 107
#define IDC_TABS 1000

#define IDD_PROGRESS 108
#define IDC_STEP_TEXT 1024
#define IDC_STEP_BAR 1025
#define IDC_TOTAL_BAR 1027
#define IDC_TOTAL_LABEL 1028

#define IDR_ACCELERATORS 113
#define IDM_HELP_PAGE 40001
#define IDM_NEXT_PAGE 40002
#define IDM_PREVIOUS_PAGE 40003
#define IDM_CLOSE 40004
#define IDM_QUIT 40014

#define IDD_AUTOBACKUP_PROMPT 132
#define IDC_PROMPT_MESSAGE 1069
#define IDC_PROMPT_REASON 1070
#define IDC_PROMPT_COUNTDOWN 1071

#define IDC_AGENT_BAR 1067
#define IDC_AGENT_LABEL 1068
