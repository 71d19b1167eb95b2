#include "platform/registry_seed.h"

namespace platform {
namespace {

// Identifiers as they appear in Reference= and Object= lines of projects saved by VB6 and in
// the project templates VB6 ships. One entry per identifier: ADO's recordset library, for
// example, keeps one identifier across its versions.
constexpr TypeLibrarySeed kTypeLibraries[] = {
    // Core: OLE Automation, the VBA language, the VB runtime objects, the IDE's object model.
    {"{00020430-0000-0000-C000-000000000046}", "OLE Automation"},
    {"{000204EF-0000-0000-C000-000000000046}", "Visual Basic For Applications"},
    {"{FCFB3D2E-A0FA-1068-A738-08002B3371B5}", "Visual Basic runtime objects and procedures"},
    {"{EF404E00-EDA6-101A-8DAF-00DD010F7EBB}", "Microsoft Visual Basic 6.0 Extensibility"},
    // Data access.
    {"{00000200-0000-0010-8000-00AA006D2EA4}", "Microsoft ActiveX Data Objects 2.0 Library"},
    {"{00000201-0000-0010-8000-00AA006D2EA4}", "Microsoft ActiveX Data Objects 2.1 Library"},
    {"{00000205-0000-0010-8000-00AA006D2EA4}", "Microsoft ActiveX Data Objects 2.5 Library"},
    {"{00000206-0000-0010-8000-00AA006D2EA4}", "Microsoft ActiveX Data Objects 2.6 Library"},
    {"{EF53050B-882E-4776-B643-EDA472E8E3F2}", "Microsoft ActiveX Data Objects 2.7 Library"},
    {"{2A75196C-D9EB-4129-B803-931327F72D5C}", "Microsoft ActiveX Data Objects 2.8 Library"},
    {"{00000300-0000-0010-8000-00AA006D2EA4}",
     "Microsoft ActiveX Data Objects Recordset 2.8 Library"},
    {"{00000600-0000-0010-8000-00AA006D2EA4}", "Microsoft ADO Ext. 2.8 for DDL and Security"},
    {"{00025E01-0000-0000-C000-000000000046}", "Microsoft DAO 3.6 Object Library"},
    {"{EE008642-64A8-11CE-920F-08002B369A33}", "Microsoft Remote Data Object 2.0"},
    {"{7C0FFAB0-CD84-11D0-949A-00A0C91110ED}", "Microsoft Data Source Interfaces"},
    {"{56BF9020-7A2F-11D0-9482-00A0C91110ED}", "Microsoft Data Binding Collection"},
    {"{6B263850-900B-11D0-9484-00A0C91110ED}", "Microsoft Data Formatting Object Library"},
    // Designers.
    {"{3D5C6BF0-69A3-11D0-B393-00A0C9055D8E}", "Microsoft Data Environment Instance 1.0"},
    {"{642AC760-AAB4-11D0-8494-00A0C90DC8A9}", "Microsoft Data Report Designer v6.0"},
    {"{90290CCA-F27D-11D0-8031-00C04FB6C701}", "MSHTMLPG Control Library"},
    {"{3050F1C5-98B5-11CF-BB82-00AA00BDCE0B}", "Microsoft HTML Object Library"},
    // Windows scripting.
    {"{420B2830-E718-11CF-893D-00A0C9054228}", "Microsoft Scripting Runtime"},
    {"{3F4DACA7-160D-11D2-A8E9-00104B365C9F}", "Microsoft VBScript Regular Expressions 5.5"},
    // Controls (Object= lines).
    {"{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}", "Microsoft Windows Common Controls 6.0 (SP6)"},
    {"{86CF1D34-0C5F-11D2-A9FC-0000F8754DA1}", "Microsoft Windows Common Controls-2 6.0 (SP6)"},
    {"{38911DA0-E448-11D0-84A3-00DD01104159}", "Microsoft Windows Common Controls-3 6.0"},
    {"{6B7E6392-850A-101B-AFC0-4210102A8DA7}", "Microsoft Windows Common Controls 5.0 (SP2)"},
    {"{FE0065C0-1B7B-11CF-9D53-00AA003C9CB6}", "Microsoft Windows Common Controls-2 5.0 (SP2)"},
    {"{F9043C88-F6F2-101A-A3C9-08002B2F49FB}", "Microsoft Common Dialog Control 6.0 (SP6)"},
    {"{3B7C8863-D78F-101B-B9B5-04021C009402}", "Microsoft Rich Textbox Control 6.0 (SP6)"},
    {"{BDC217C8-ED16-11CD-956C-0000C04E4C0A}", "Microsoft Tabbed Dialog Control 6.0 (SP6)"},
    {"{5E9E78A0-531B-11CF-91F6-C2863C385E30}", "Microsoft FlexGrid Control 6.0 (SP6)"},
    {"{0ECD9B60-23AA-11D0-B351-00A0C9055D8E}",
     "Microsoft Hierarchical FlexGrid Control 6.0 (SP6) (OLEDB)"},
    {"{248DD890-BB45-11CF-9ABC-0080C7E7B78D}", "Microsoft Winsock Control 6.0 (SP6)"},
    {"{48E59290-9880-11CF-9754-00AA00C00908}", "Microsoft Internet Transfer Control 6.0 (SP6)"},
    {"{648A5603-2C6E-101B-82B6-000000000014}", "Microsoft Comm Control 6.0"},
    {"{C932BA88-4374-101B-A56C-00AA003668DC}", "Microsoft Masked Edit Control 6.0 (SP6)"},
    {"{CDE57A40-8B86-11D0-B3C6-00A0C90AEA82}", "Microsoft DataGrid Control 6.0 (SP6) (OLEDB)"},
    {"{F0D2F211-CCB0-11D0-A316-00AA00688B10}", "Microsoft DataList Controls 6.0 (SP6) (OLEDB)"},
    {"{67397AA1-7FB1-11D0-B148-00A0C922E820}", "Microsoft ADO Data Control 6.0 (SP6) (OLEDB)"},
    {"{5C8CED40-8909-11D0-9483-00A0C91110ED}", "Microsoft DataRepeater Control 6.0 (OLEDB)"},
    {"{00028C01-0000-0000-0000-000000000046}", "Microsoft Data Bound Grid Control 5.0 (SP3)"},
    {"{FAEEE763-117E-101B-8933-08002B2F4F5A}", "Microsoft Data Bound List Controls 6.0"},
    {"{F6125AB1-8AB1-11CE-A77F-08002B2F4E98}", "Microsoft RemoteData Control 6.0 (SP6)"},
    {"{65E121D4-0C60-11D2-A9FC-0000F8754DA1}", "Microsoft Chart Control 6.0 (SP4) (OLEDB)"},
    {"{27395F88-0C0C-101B-A3C9-08002B2F49FB}", "Microsoft PictureClip Control 6.0 (SP6)"},
    {"{C1A8AF28-1257-101B-8FB0-0020AF039CA3}", "Microsoft Multimedia Control 6.0 (SP6)"},
    {"{6FBA474E-43AC-11CE-9A0E-00AA0062BB4C}", "Microsoft SysInfo Control 6.0"},
    {"{20C62CAE-15DA-101B-B9A8-444553540000}", "Microsoft MAPI Controls 6.0"},
};

}  // namespace

std::span<const TypeLibrarySeed> SeedTypeLibraries() {
  return kTypeLibraries;
}

}  // namespace platform
