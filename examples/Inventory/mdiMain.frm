VERSION 5.00
Begin VB.MDIForm mdiMain 
   BackColor       =   &H8000000C&
   Caption         =   "Inventory"
   ClientHeight    =   6150
   ClientLeft      =   165
   ClientTop       =   855
   ClientWidth     =   9480
   LinkTopic       =   "MDIForm1"
   StartUpPosition =   3  'Windows Default
   WindowState     =   2  'Maximized
   Begin VB.Menu mnuStock 
      Caption         =   "&Stock"
      Begin VB.Menu mnuStockItems 
         Caption         =   "&Items..."
         Shortcut        =   ^I
      End
      Begin VB.Menu mnuStockSep1 
         Caption         =   "-"
      End
      Begin VB.Menu mnuStockQuit 
         Caption         =   "&Quit"
      End
   End
End
Attribute VB_Name = "mdiMain"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
Option Explicit

Private Sub MDIForm_Load()
    Caption = APP_TITLE & " - " & ReadSetting("Shop", "Name", "My Shop")
    frmMain.Show
End Sub

Private Sub MDIForm_QueryUnload(Cancel As Integer, UnloadMode As Integer)
    If UnloadMode = vbFormControlMenu Then
        Cancel = (MsgBox("Quit " & APP_TITLE & "?", vbQuestion + vbYesNo) = vbNo)
    End If
End Sub

Private Sub mnuStockItems_Click()
    frmMain.Show
    frmMain.SetFocus
End Sub

Private Sub mnuStockQuit_Click()
    Unload frmMain
    Unload Me
End Sub
